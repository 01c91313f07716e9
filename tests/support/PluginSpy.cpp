#include "PluginSpy.h"

#include "PluginBus.h"

namespace wctest {

PluginSpy::PluginSpy() {
    id_ = wcref::PluginBus::instance().subscribe([this](const PluginMetaData& message) {
        SeenMessage seen;
        seen.sender = message.sender;
        seen.receiver = message.receiver;
        seen.code = message.code;
        seen.values = message.values;
        seen.payload_address = reinterpret_cast<std::uintptr_t>(message.payload);
        messages_.append(seen);
    });
}

PluginSpy::~PluginSpy() {
    wcref::PluginBus::instance().unsubscribe(id_);
}

QList<int> PluginSpy::codes() const {
    QList<int> result;
    for (const SeenMessage& message : messages_) {
        result.append(message.code);
    }
    return result;
}

QList<SeenMessage> PluginSpy::withCode(int code) const {
    QList<SeenMessage> result;
    for (const SeenMessage& message : messages_) {
        if (message.code == code) {
            result.append(message);
        }
    }
    return result;
}

}  // namespace wctest
