#pragma once
// Where the viewer stands among the admitted hits of the current category. Positions never leave
// the sequence: stepping past either end stays at the end.

#include <cstddef>

#include "frame/WidgetCommonExport.h"

namespace wc {

class WIDGET_COMMON_EXPORT HitNavigator {
public:
    // A new sequence of `count` hits; stands on the first when there is one.
    void reset(std::size_t count) {
        count_ = count;
        position_ = count == 0 ? kNone : 0;
    }
    bool first() { return moveTo(0); }
    bool last() { return count_ == 0 ? false : moveTo(count_ - 1); }
    bool next() { return position_ == kNone ? first() : moveTo(position_ + 1); }
    bool previous() { return position_ == kNone || position_ == 0 ? false : moveTo(position_ - 1); }
    // "Index:" counts from 1; anything outside 1..count is refused and the position kept.
    bool goToIndex(long long index) {
        return index < 1 || static_cast<unsigned long long>(index) > count_
                   ? false
                   : moveTo(static_cast<std::size_t>(index - 1));
    }
    bool moveTo(std::size_t position) {
        if (position >= count_ || position == position_) {
            return position < count_;
        }
        position_ = position;
        return true;
    }

    std::size_t count() const { return count_; }
    bool valid() const { return position_ != kNone; }
    std::size_t position() const { return position_; }
    // From 1; 0 when there is no hit.
    std::size_t index() const { return valid() ? position_ + 1 : 0; }

private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    std::size_t count_ = 0;
    std::size_t position_ = kNone;
};

}  // namespace wc
