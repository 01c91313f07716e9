#pragma once

#include <deque>
#include <functional>
#include <vector>

#include "PluginMetaData.h"

namespace wcref {

// The reference host's message bus behind QTpluginsManger4CAM: every message goes, at once and
// in subscription order, to every subscriber, and a copy is kept in a bounded log. Logged
// copies have no payload, because the payload lives only as long as the call. GUI thread only.
class PluginBus {
public:
    using Handler = std::function<void(const PluginMetaData&)>;

    static PluginBus& instance();

    int subscribe(Handler handler);
    void unsubscribe(int id);
    void deliver(const PluginMetaData& message);

    const std::deque<PluginMetaData>& log() const { return log_; }
    void clearLog() { log_.clear(); }
    // Oldest entries are dropped beyond `limit` (default 1000).
    void setLogLimit(size_t limit);

private:
    PluginBus() = default;

    struct Subscriber {
        int id;
        Handler handler;
    };
    std::vector<Subscriber> subscribers_;
    int next_id_ = 1;
    std::deque<PluginMetaData> log_;
    size_t log_limit_ = 1000;
};

}  // namespace wcref
