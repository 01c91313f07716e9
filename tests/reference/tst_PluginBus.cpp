#include <QtTest>

#include "PluginBus.h"
#include "QTpluginsManger4CAM.h"

using wcref::PluginBus;

namespace {

PluginMetaData message(int code) {
    PluginMetaData m;
    m.sender = "Graphic_MenuBar_Analysis.dll";
    m.receiver = "Graphic_View.dll";
    m.code = code;
    return m;
}

QTpluginsManger4CAM* manager() {
    return QTpluginsManger4CAM::instance();
}

}  // namespace

class tst_PluginBus : public QObject {
    Q_OBJECT

private slots:
    void init() {
        PluginBus::instance().clearLog();
        PluginBus::instance().setLogLimit(1000);
    }

    void cleanup() {
        for (int id : subscriptions_)
            PluginBus::instance().unsubscribe(id);
        subscriptions_.clear();
    }

    // Delivery is synchronous: every receiver has run when the send returns.
    void deliveryOrder() {
        QStringList seen;
        for (const QString& name : QStringList{"first", "second", "third"})
            subscribe([&seen, name](const PluginMetaData& m) {
                seen << name + ":" + QString::number(m.code);
            });
        manager()->recMegToPlugin(this, message(20002803));
        manager()->recMegToPlugin(this, message(20002808));
        QCOMPARE(seen, (QStringList{"first:20002803", "second:20002803", "third:20002803",
                                    "first:20002808", "second:20002808", "third:20002808"}));

        PluginBus::instance().unsubscribe(subscriptions_[1]);
        seen.clear();
        manager()->pluginTransmitData(message(1));
        QCOMPARE(seen, (QStringList{"first:1", "third:1"}));
    }

    void unsubscribeDuringDelivery() {
        int later_calls = 0;
        int self = 0;
        self =
            subscribe([&self](const PluginMetaData&) { PluginBus::instance().unsubscribe(self); });
        subscribe([&later_calls](const PluginMetaData&) { ++later_calls; });
        manager()->pluginTransmitData(message(1));
        manager()->pluginTransmitData(message(2));
        QCOMPARE(later_calls, 2);
    }

    void boundedLog_data() {
        QTest::addColumn<int>("limit");
        QTest::addColumn<int>("sent");
        QTest::addColumn<int>("kept");
        QTest::newRow("below") << 5 << 3 << 3;
        QTest::newRow("at") << 5 << 5 << 5;
        QTest::newRow("beyond") << 5 << 12 << 5;
        QTest::newRow("zero") << 0 << 4 << 0;
    }
    void boundedLog() {
        QFETCH(int, limit);
        QFETCH(int, sent);
        QFETCH(int, kept);
        PluginBus::instance().setLogLimit(limit);
        for (int code = 1; code <= sent; ++code)
            manager()->recMegToPlugin(this, message(code));
        const auto& log = PluginBus::instance().log();
        QCOMPARE(static_cast<int>(log.size()), kept);
        for (int i = 0; i < kept; ++i)
            QCOMPARE(log[i].code, sent - kept + 1 + i);  // newest kept, in order
        // Lowering the limit trims what is already there.
        PluginBus::instance().setLogLimit(1);
        QCOMPARE(static_cast<int>(log.size()), std::min(kept, 1));
    }

private:
    int subscribe(std::function<void(const PluginMetaData&)> receiver) {
        subscriptions_.push_back(PluginBus::instance().subscribe(std::move(receiver)));
        return subscriptions_.back();
    }

    std::vector<int> subscriptions_;
};

QTEST_MAIN(tst_PluginBus)
#include "tst_PluginBus.moc"
