#include "Ipc356.h"

#include <QFile>
#include <QRegularExpression>
#include <QString>

namespace wcref {

namespace {

// The fields after the net name, found by their letters: writers disagree on a column or two.
const QRegularExpression& fieldsPattern() {
    static const QRegularExpression pattern(
        QStringLiteral("(?:D(\\d{1,5}))?\\s*([PU])?\\s*A(\\d\\d)\\s*X\\s*([+-]?\\s*\\d{1,7})"
                       "\\s*Y\\s*([+-]?\\s*\\d{1,7})"));
    return pattern;
}

double number(QString text) {
    text.remove(QLatin1Char(' '));
    return text.toDouble();
}

}  // namespace

bool Ipc356::looksLikeNetlist(const std::string& head) {
    const QString text = QString::fromStdString(head);
    return text.contains(QRegularExpression(QStringLiteral("^P  (JOB|UNITS|CODE)"),
                                            QRegularExpression::MultilineOption)) ||
           text.contains(QRegularExpression(QStringLiteral("^3[12]7\\S"),
                                            QRegularExpression::MultilineOption));
}

bool Ipc356::parse(const std::string& text, std::vector<TestPoint>& points, std::string& message) {
    points.clear();
    double nm_per_unit = 2540.0;  // 0.0001 inch
    const QStringList lines = QString::fromStdString(text).split(QRegularExpression("\r?\n"));
    for (int number_of_line = 0; number_of_line < lines.size(); ++number_of_line) {
        const QString& line = lines.at(number_of_line);
        if (line.startsWith(QLatin1String("999"))) {
            break;
        }
        if (line.startsWith(QLatin1String("P  UNITS"))) {
            const QString units = line.mid(8).trimmed().toUpper();
            if (units.startsWith(QLatin1String("CUST 1")) ||
                units.startsWith(QLatin1String("SI"))) {
                nm_per_unit = 1000.0;  // 0.001 mm
            } else if (units.startsWith(QLatin1String("CUST 0")) ||
                       units.startsWith(QLatin1String("CUST 2")) || units.isEmpty()) {
                nm_per_unit = 2540.0;
            } else {
                message = "netlist line " + std::to_string(number_of_line + 1) +
                          ": unknown units \"" + units.toStdString() + "\"";
                points.clear();
                return false;
            }
            continue;
        }
        if (!(line.startsWith(QLatin1String("317")) || line.startsWith(QLatin1String("327")))) {
            continue;
        }
        const QRegularExpressionMatch m = fieldsPattern().match(line, 17);
        if (!m.hasMatch()) {
            message = "netlist line " + std::to_string(number_of_line + 1) +
                      " is not a test record: \"" + line.toStdString() + "\"";
            points.clear();
            return false;
        }
        TestPoint p;
        p.net = line.mid(3, 14).trimmed().toStdString();
        p.reference = line.mid(20, 11).trimmed().toStdString();
        p.hole = m.captured(1).isEmpty() ? 0.0 : m.captured(1).toDouble() * nm_per_unit;
        const int access = m.captured(3).toInt();
        p.side = access == 0 ? TestPoint::both : access == 1 ? TestPoint::top : TestPoint::bottom;
        p.at = {number(m.captured(4)) * nm_per_unit, number(m.captured(5)) * nm_per_unit};
        points.push_back(std::move(p));
    }
    if (points.empty()) {
        message = "the netlist holds no test point";
        return false;
    }
    return true;
}

bool Ipc356::read(const std::string& path, std::vector<TestPoint>& points, std::string& message) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly)) {
        message = "cannot read " + path;
        return false;
    }
    const QByteArray bytes = file.readAll();
    if (!parse(std::string(bytes.constData(), static_cast<size_t>(bytes.size())), points,
               message)) {
        message = path + ": " + message;
        return false;
    }
    return true;
}

}  // namespace wcref
