#pragma once
// How the results viewer takes a result: shared (a shared_ptr to const, kept alive by the viewer
// for as long as it shows it) or lent (a reference to a map the calling dialog owns and keeps
// alive until it refreshes the viewer with a newer result or the viewer is gone). Neither copies.

#include <memory>

namespace wc {

template <typename Result>
class SharedResult {
public:
    SharedResult(std::shared_ptr<const Result> shared) : result_(std::move(shared)) {}
    SharedResult(std::shared_ptr<Result> shared) : result_(std::move(shared)) {}
    // Lent: an aliasing pointer that owns nothing.
    SharedResult(const Result& lent) : result_(std::shared_ptr<const Result>(), &lent) {}

    const std::shared_ptr<const Result>& pointer() const { return result_; }
    const Result& operator*() const { return *result_; }

private:
    std::shared_ptr<const Result> result_;
};

}  // namespace wc
