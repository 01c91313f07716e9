// Check lists as the reference check-list service writes them: two UTF-8 text files below the
// job's folder (a name that is absolute is used as it is). Blank lines and lines beginning with
// '#' are skipped in both.
//
// Header file: one layer name per line; every listed layer gets a result, empty or not.
// Result file: one hit per line, eight fields separated by ';':
//     layer;item;level;value;x1;y1;x2;y2
// `layer` is one of the header's layers, `item` the value of signal_layers_checks_items,
// `level` one of red, yellow, green, other, and the rest numbers in engine units; the two
// points are the hit's measurement line. A malformed line fails the whole read and leaves the
// result map untouched.

#include <glog/logging.h>
#include <QDir>
#include <QFile>
#include <QSet>
#include <QStringList>

#include "CheckListReaders.h"

namespace {

using namespace Korvo::API;

QString resolve(const std::string& folder, const std::string& name) {
    const QString file = QString::fromStdString(name);
    if (QDir::isAbsolutePath(file))
        return file;
    return QDir(QString::fromStdString(folder)).filePath(file);
}

bool readLines(const QString& path, QStringList& lines) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        LOG(ERROR) << "cannot read check list " << path.toStdString() << ": "
                   << file.errorString().toStdString();
        return false;
    }
    lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    return true;
}

bool isSkipped(const QString& line) {
    return line.isEmpty() || line.startsWith(QLatin1Char('#'));
}

std::vector<check_info>* listOf(signal_check_result& result, const QString& level) {
    if (level == QLatin1String("red"))
        return &result.red;
    if (level == QLatin1String("yellow"))
        return &result.yellow;
    if (level == QLatin1String("green"))
        return &result.green;
    if (level == QLatin1String("other"))
        return &result.other;
    return nullptr;
}

}  // namespace

bool SignalLayersCheckListReader::parse(const std::string& job_folder,
                                        const std::string& header_file,
                                        const std::string& result_file,
                                        signal_check_result_map& result) {
    const QString header_path = resolve(job_folder, header_file);
    const QString result_path = resolve(job_folder, result_file);
    QStringList header;
    QStringList hits;
    if (!readLines(header_path, header) || !readLines(result_path, hits))
        return false;

    signal_check_result_map parsed;
    for (const QString& raw : header) {
        const QString layer = raw.trimmed();
        if (!isSkipped(layer))
            parsed[layer.toStdString()];
    }

    for (int number = 0; number < hits.size(); ++number) {
        const QString line = hits.at(number).trimmed();
        if (isSkipped(line))
            continue;
        const QStringList fields = line.split(QLatin1Char(';'));
        bool ok = fields.size() == 8;
        auto layer = ok ? parsed.find(fields.at(0).trimmed().toStdString()) : parsed.end();
        ok = ok && layer != parsed.end();
        bool item_ok = false;
        const int item = ok ? fields.at(1).trimmed().toInt(&item_ok) : -1;
        ok = ok && item_ok && item >= 0 && item <= sli_netlist_short;
        double numbers[5] = {};
        for (int i = 0; ok && i < 5; ++i) {
            numbers[i] = fields.at(3 + i).trimmed().toDouble(&ok);
        }
        if (!ok) {
            LOG(ERROR) << "check list " << result_path.toStdString() << " line " << number + 1
                       << " is malformed: " << line.toStdString();
            return false;
        }
        const auto key = static_cast<signal_layers_checks_items>(item);
        signal_check_result& record = layer->second[key];
        record.item = key;
        std::vector<check_info>* list = listOf(record, fields.at(2).trimmed());
        if (list == nullptr) {
            LOG(ERROR) << "check list " << result_path.toStdString() << " line " << number + 1
                       << " has an unknown level: " << line.toStdString();
            return false;
        }
        // The files name no features and no rule's value: signature and required stay 0.
        check_info hit;
        hit.value = numbers[0];
        hit.shape.kind = check_points::line;
        hit.shape.points = {point{numbers[1], numbers[2]}, point{numbers[3], numbers[4]}};
        list->push_back(hit);
    }
    result = std::move(parsed);
    return true;
}
