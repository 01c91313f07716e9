#include "PluginBus.h"

#include <algorithm>

namespace wcref {

PluginBus& PluginBus::instance() {
    static PluginBus bus;
    return bus;
}

int PluginBus::subscribe(Handler handler) {
    const int id = next_id_++;
    subscribers_.push_back({id, std::move(handler)});
    return id;
}

void PluginBus::unsubscribe(int id) {
    subscribers_.erase(std::remove_if(subscribers_.begin(), subscribers_.end(),
                                      [id](const Subscriber& s) { return s.id == id; }),
                       subscribers_.end());
}

void PluginBus::deliver(const PluginMetaData& message) {
    PluginMetaData logged = message;
    logged.payload = nullptr;
    log_.push_back(std::move(logged));
    while (log_.size() > log_limit_)
        log_.pop_front();
    // A handler may subscribe or unsubscribe while it runs; this message still goes to the
    // subscribers present when it was sent.
    const std::vector<Subscriber> subscribers = subscribers_;
    for (const Subscriber& subscriber : subscribers) {
        if (subscriber.handler)
            subscriber.handler(message);
    }
}

void PluginBus::setLogLimit(size_t limit) {
    log_limit_ = limit;
    while (log_.size() > log_limit_)
        log_.pop_front();
}

}  // namespace wcref
