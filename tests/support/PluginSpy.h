#pragma once
// Records every plug-in message sent while it lives. The payload is only valid during the
// delivery, so a record keeps its address as a number, never the pointer.

#include <QList>
#include <QString>
#include <QVariantMap>
#include <cstdint>

#include "PluginMetaData.h"

namespace wctest {

struct SeenMessage {
    QString sender;
    QString receiver;
    int code = 0;
    QVariantMap values;
    std::uintptr_t payload_address = 0;
};

class PluginSpy {
public:
    PluginSpy();
    ~PluginSpy();
    PluginSpy(const PluginSpy&) = delete;
    PluginSpy& operator=(const PluginSpy&) = delete;

    const QList<SeenMessage>& messages() const { return messages_; }
    int count() const { return messages_.size(); }
    // Codes in the order the messages were sent.
    QList<int> codes() const;
    // The messages with `code`, in order.
    QList<SeenMessage> withCode(int code) const;
    void clear() { messages_.clear(); }

private:
    int id_ = 0;
    QList<SeenMessage> messages_;
};

}  // namespace wctest
