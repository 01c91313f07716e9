// libFuzzer entry point: a waiver file a colleague handed over, or a hit identity typed into it.
// A file is either refused, with a message and the waivers left as they were, or read; what was
// read writes out and reads back the same. An identity text either is refused or reads back to
// itself.

#include <glog/logging.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "analysis/HitIdentity.h"
#include "analysis/WaiverFile.h"

namespace {

using Korvo::API::analysis_waiver;

bool sameWaivers(const std::vector<analysis_waiver>& a, const std::vector<analysis_waiver>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t k = 0; k < a.size(); ++k) {
        const analysis_waiver& x = a[k];
        const analysis_waiver& y = b[k];
        if (x.scope != y.scope || x.item != y.item || x.layer != y.layer || x.nets != y.nets ||
            x.identity != y.identity || x.reason != y.reason || x.user != y.user ||
            x.time != y.time || x.history.size() != y.history.size()) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (const auto identity = wc::HitIdentity::fromText(text)) {
        if (identity->text() != text) {
            __builtin_trap();  // only the canonical text is accepted
        }
    }

    // A refusal is logged too; the fuzzer reads the answer, not the log.
    static const bool quiet = (FLAGS_minloglevel = google::GLOG_FATAL, true);
    (void)quiet;
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("waivers.json"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        return 0;
    }
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();

    const wc::TriageScope scope{"SignalLayer", "job", "pcb"};
    analysis_waiver marker;
    marker.reason = "untouched";
    std::vector<analysis_waiver> waivers{marker};
    QString error;
    if (!wc::readWaiverFile(path, scope, waivers, &error)) {
        if (error.isEmpty() || waivers.size() != 1 || waivers.front().reason != "untouched") {
            __builtin_trap();  // a refusal says why and changes nothing
        }
        return 0;
    }
    const QString again = folder.filePath(QStringLiteral("again.json"));
    std::vector<analysis_waiver> read_back;
    if (!wc::writeWaiverFile(again, scope, waivers, &error) ||
        !wc::readWaiverFile(again, scope, read_back, &error) || !sameWaivers(waivers, read_back)) {
        __builtin_trap();  // what was read writes out and reads back the same
    }
    return 0;
}
