#pragma once
// Disjoint sets over 0..n-1 with path halving: the islands of copper and the nets they join.

#include <cstddef>
#include <numeric>
#include <vector>

namespace wcref {

class UnionFind {
public:
    explicit UnionFind(size_t n = 0) : parent_(n) { std::iota(parent_.begin(), parent_.end(), 0); }
    size_t add() {
        parent_.push_back(parent_.size());
        return parent_.size() - 1;
    }
    size_t size() const { return parent_.size(); }
    size_t find(size_t x) {
        while (parent_[x] != x) {
            parent_[x] = parent_[parent_[x]];
            x = parent_[x];
        }
        return x;
    }
    void join(size_t a, size_t b) { parent_[find(a)] = find(b); }

private:
    std::vector<size_t> parent_;
};

}  // namespace wcref
