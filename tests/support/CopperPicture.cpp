#include "CopperPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
#include <utility>

namespace wctest {

CopperPicture::CopperPicture(int width, int height, double left, double bottom, double pixel,
                             std::vector<uint8_t> copper, double max_gap)
    : width_(std::max(0, width)),
      height_(std::max(0, height)),
      left_(left),
      bottom_(bottom),
      pixel_(pixel),
      copper_(std::move(copper)) {
    copper_.resize(static_cast<size_t>(width_) * static_cast<size_t>(height_), 0);
    label();
    transform();
    collectMeetings(max_gap);
}

CopperPicture CopperPicture::fromImage(const QImage& image, double left, double bottom,
                                       double pixel, double max_gap) {
    const bool direct =
        image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_ARGB32;
    const QImage rgb = direct ? image : image.convertToFormat(QImage::Format_RGB32);
    std::vector<uint8_t> copper(static_cast<size_t>(rgb.width()) * rgb.height());
    for (int y = 0; y < rgb.height(); ++y) {
        const QRgb* line = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        for (int x = 0; x < rgb.width(); ++x) {
            copper[static_cast<size_t>(y) * rgb.width() + x] = qGreen(line[x]) >= 128 ? 1 : 0;
        }
    }
    return CopperPicture(rgb.width(), rgb.height(), left, bottom, pixel, std::move(copper),
                         max_gap);
}

QPointF CopperPicture::centre(int column, int row) const {
    return {left_ + (column + 0.5) * pixel_, bottom_ + (height_ - row - 0.5) * pixel_};
}

void CopperPicture::pixelOf(QPointF p, int& column, int& row) const {
    column = static_cast<int>(std::floor((p.x() - left_) / pixel_));
    row = height_ - 1 - static_cast<int>(std::floor((p.y() - bottom_) / pixel_));
}

bool CopperPicture::contains(QPointF p, double margin) const {
    return p.x() >= left_ + margin && p.x() <= left_ + width_ * pixel_ - margin &&
           p.y() >= bottom_ + margin && p.y() <= bottom_ + height_ * pixel_ - margin;
}

bool CopperPicture::isCopper(int column, int row) const {
    return islandAt(column, row) != 0;
}

int CopperPicture::islandAt(int column, int row) const {
    if (column < 0 || row < 0 || column >= width_ || row >= height_) {
        return 0;
    }
    return island_[static_cast<size_t>(row) * width_ + column];
}

std::vector<int> CopperPicture::islandsNear(QPointF p, double radius) const {
    int cx = 0;
    int cy = 0;
    pixelOf(p, cx, cy);
    const int r = static_cast<int>(std::ceil(radius / pixel_)) + 1;
    std::vector<int> found;
    for (int y = std::max(0, cy - r); y <= std::min(height_ - 1, cy + r); ++y) {
        for (int x = std::max(0, cx - r); x <= std::min(width_ - 1, cx + r); ++x) {
            const int island = island_[static_cast<size_t>(y) * width_ + x];
            if (island == 0 || std::find(found.begin(), found.end(), island) != found.end()) {
                continue;
            }
            const QPointF c = centre(x, y);
            if (std::hypot(c.x() - p.x(), c.y() - p.y()) <= radius) {
                found.push_back(island);
            }
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool CopperPicture::reachesBorder(int island, double margin) const {
    if (island <= 0 || island > islands_) {
        return false;
    }
    const int m = static_cast<int>(std::ceil(margin / pixel_));
    const Box& b = boxes_[static_cast<size_t>(island)];
    return b.x0 < m || b.y0 < m || b.x1 >= width_ - m || b.y1 >= height_ - m;
}

// Islands by flood fill over the 8 neighbours; each island's box on the way.
void CopperPicture::label() {
    const size_t n = copper_.size();
    island_.assign(n, 0);
    boxes_.assign(1, Box{0, 0, -1, -1});
    std::vector<int32_t> stack;
    for (size_t start = 0; start < n; ++start) {
        if (copper_[start] == 0 || island_[start] != 0) {
            continue;
        }
        const int id = ++islands_;
        Box box{width_, height_, -1, -1};
        island_[start] = id;
        stack.push_back(static_cast<int32_t>(start));
        while (!stack.empty()) {
            const int32_t at = stack.back();
            stack.pop_back();
            const int x = at % width_;
            const int y = at / width_;
            box.x0 = std::min(box.x0, x);
            box.y0 = std::min(box.y0, y);
            box.x1 = std::max(box.x1, x);
            box.y1 = std::max(box.y1, y);
            for (int dy = -1; dy <= 1; ++dy) {
                for (int dx = -1; dx <= 1; ++dx) {
                    const int nx = x + dx;
                    const int ny = y + dy;
                    if (nx < 0 || ny < 0 || nx >= width_ || ny >= height_) {
                        continue;
                    }
                    const size_t next = static_cast<size_t>(ny) * width_ + nx;
                    if (copper_[next] != 0 && island_[next] == 0) {
                        island_[next] = id;
                        stack.push_back(static_cast<int32_t>(next));
                    }
                }
            }
        }
        boxes_.push_back(box);
    }
}

// Exact Euclidean feature transform in two separable passes: along each column the nearest
// copper row, then along each row the lower envelope of the parabolas (x - x')^2 + dy(x')^2.
void CopperPicture::transform() {
    const size_t n = copper_.size();
    source_.assign(n, -1);
    if (n == 0) {
        return;
    }
    std::vector<int32_t> nearest_row(n, -1);
    for (int x = 0; x < width_; ++x) {
        int last = -1;
        for (int y = 0; y < height_; ++y) {
            if (copper_[static_cast<size_t>(y) * width_ + x] != 0) {
                last = y;
            }
            nearest_row[static_cast<size_t>(y) * width_ + x] = last;
        }
        last = -1;
        for (int y = height_ - 1; y >= 0; --y) {
            const size_t at = static_cast<size_t>(y) * width_ + x;
            if (copper_[at] != 0) {
                last = y;
            }
            if (last >= 0 && (nearest_row[at] < 0 || last - y < y - nearest_row[at])) {
                nearest_row[at] = last;
            }
        }
    }
    std::vector<int> sites(static_cast<size_t>(width_));
    std::vector<double> bounds(static_cast<size_t>(width_) + 1);
    for (int y = 0; y < height_; ++y) {
        const int32_t* rows = &nearest_row[static_cast<size_t>(y) * width_];
        const auto f = [rows, y](int x) {
            const double d = rows[x] - y;
            return d * d;
        };
        int k = -1;
        for (int q = 0; q < width_; ++q) {
            if (rows[q] < 0) {
                continue;
            }
            while (k >= 0) {
                const int v = sites[static_cast<size_t>(k)];
                const double s =
                    ((f(q) + double(q) * q) - (f(v) + double(v) * v)) / (2.0 * (q - v));
                if (s <= bounds[static_cast<size_t>(k)]) {
                    --k;
                } else {
                    ++k;
                    sites[static_cast<size_t>(k)] = q;
                    bounds[static_cast<size_t>(k)] = s;
                    break;
                }
            }
            if (k < 0) {
                k = 0;
                sites[0] = q;
                bounds[0] = -std::numeric_limits<double>::infinity();
            }
        }
        if (k < 0) {
            continue;  // no copper in any column: every pixel stays without a source
        }
        int j = 0;
        for (int x = 0; x < width_; ++x) {
            while (j < k && bounds[static_cast<size_t>(j) + 1] < x) {
                ++j;
            }
            const int sx = sites[static_cast<size_t>(j)];
            source_[static_cast<size_t>(y) * width_ + x] = rows[sx] * width_ + sx;
        }
    }
}

void CopperPicture::collectMeetings(double max_gap) {
    const double limit = max_gap / pixel_;
    const auto consider = [this, limit](size_t p, size_t q) {
        const int32_t sp = source_[p];
        const int32_t sq = source_[q];
        if (sp < 0 || sq < 0) {
            return;
        }
        const int ip = island_[static_cast<size_t>(sp)];
        const int iq = island_[static_cast<size_t>(sq)];
        if (ip == iq) {
            return;
        }
        const double gap =
            std::hypot(double(sp % width_ - sq % width_), double(sp / width_ - sq / width_)) - 1.0;
        if (gap >= limit) {
            return;
        }
        meetings_.push_back(ip < iq ? Meeting{sp, sq, static_cast<float>(gap)}
                                    : Meeting{sq, sp, static_cast<float>(gap)});
    };
    for (int y = 0; y < height_; ++y) {
        for (int x = 0; x < width_; ++x) {
            const size_t p = static_cast<size_t>(y) * width_ + x;
            if (x + 1 < width_) {
                consider(p, p + 1);
            }
            if (y + 1 < height_) {
                consider(p, p + width_);
            }
        }
    }
    std::sort(meetings_.begin(), meetings_.end(), [](const Meeting& l, const Meeting& r) {
        return std::make_pair(l.source_a, l.source_b) < std::make_pair(r.source_a, r.source_b);
    });
    meetings_.erase(std::unique(meetings_.begin(), meetings_.end(),
                                [](const Meeting& l, const Meeting& r) {
                                    return l.source_a == r.source_a && l.source_b == r.source_b;
                                }),
                    meetings_.end());
    cells_x_ = width_ / cell_ + 1;
    cells_y_ = height_ / cell_ + 1;
    buckets_.assign(static_cast<size_t>(cells_x_) * cells_y_, {});
    for (size_t i = 0; i < meetings_.size(); ++i) {
        const Meeting& m = meetings_[i];
        const double mx = (m.source_a % width_ + m.source_b % width_) / 2.0;
        const double my = (m.source_a / width_ + m.source_b / width_) / 2.0;
        buckets_[static_cast<size_t>(cellOf(mx, my))].push_back(static_cast<int32_t>(i));
    }
}

int CopperPicture::cellOf(double column, double row) const {
    const int cx = std::clamp(static_cast<int>(column) / cell_, 0, cells_x_ - 1);
    const int cy = std::clamp(static_cast<int>(row) / cell_, 0, cells_y_ - 1);
    return cy * cells_x_ + cx;
}

IslandMeeting CopperPicture::toMeeting(const Meeting& m) const {
    IslandMeeting out;
    out.a = island_[static_cast<size_t>(m.source_a)];
    out.b = island_[static_cast<size_t>(m.source_b)];
    out.gap = m.gap * pixel_;
    out.on_a = centre(m.source_a % width_, m.source_a / width_);
    out.on_b = centre(m.source_b % width_, m.source_b / width_);
    return out;
}

bool CopperPicture::meetingNear(int a, int b, QPointF p, double radius, IslandMeeting& out) const {
    if (a > b) {
        std::swap(a, b);
    }
    int cx = 0;
    int cy = 0;
    pixelOf(p, cx, cy);
    const int r = static_cast<int>(std::ceil(radius / pixel_)) + 1;
    const int x0 = std::clamp((cx - r) / cell_, 0, cells_x_ - 1);
    const int x1 = std::clamp((cx + r) / cell_, 0, cells_x_ - 1);
    const int y0 = std::clamp((cy - r) / cell_, 0, cells_y_ - 1);
    const int y1 = std::clamp((cy + r) / cell_, 0, cells_y_ - 1);
    bool found = false;
    for (int y = y0; y <= y1; ++y) {
        for (int x = x0; x <= x1; ++x) {
            for (int32_t i : buckets_[static_cast<size_t>(y) * cells_x_ + x]) {
                const Meeting& m = meetings_[static_cast<size_t>(i)];
                if (island_[static_cast<size_t>(m.source_a)] != a ||
                    island_[static_cast<size_t>(m.source_b)] != b ||
                    (found && m.gap * pixel_ >= out.gap)) {
                    continue;
                }
                const IslandMeeting candidate = toMeeting(m);
                const QPointF d = candidate.middle() - p;
                if (std::hypot(d.x(), d.y()) <= radius) {
                    out = candidate;
                    found = true;
                }
            }
        }
    }
    return found;
}

std::vector<NarrowGap> CopperPicture::narrowGaps(double below, double join) const {
    std::vector<IslandMeeting> narrow;
    for (const Meeting& m : meetings_) {
        if (m.gap * pixel_ < below) {
            narrow.push_back(toMeeting(m));
        }
    }
    // Union-find over meetings of the same island pair whose middles lie within `join`.
    std::vector<size_t> parent(narrow.size());
    std::iota(parent.begin(), parent.end(), size_t{0});
    const auto find = [&parent](size_t i) {
        while (parent[i] != i) {
            parent[i] = parent[parent[i]];
            i = parent[i];
        }
        return i;
    };
    const double cell = std::max(join, pixel_);
    std::map<std::pair<long, long>, std::vector<size_t>> grid;
    for (size_t i = 0; i < narrow.size(); ++i) {
        const QPointF m = narrow[i].middle();
        grid[{static_cast<long>(std::floor(m.x() / cell)),
              static_cast<long>(std::floor(m.y() / cell))}]
            .push_back(i);
    }
    for (size_t i = 0; i < narrow.size(); ++i) {
        const QPointF m = narrow[i].middle();
        const long gx = static_cast<long>(std::floor(m.x() / cell));
        const long gy = static_cast<long>(std::floor(m.y() / cell));
        for (long dy = -1; dy <= 1; ++dy) {
            for (long dx = -1; dx <= 1; ++dx) {
                const auto it = grid.find({gx + dx, gy + dy});
                if (it == grid.end()) {
                    continue;
                }
                for (size_t j : it->second) {
                    if (j <= i || narrow[j].a != narrow[i].a || narrow[j].b != narrow[i].b) {
                        continue;
                    }
                    const QPointF d = narrow[j].middle() - m;
                    if (std::hypot(d.x(), d.y()) <= join) {
                        parent[find(j)] = find(i);
                    }
                }
            }
        }
    }
    std::map<size_t, NarrowGap> groups;
    for (size_t i = 0; i < narrow.size(); ++i) {
        NarrowGap& g = groups[find(i)];
        g.a = narrow[i].a;
        g.b = narrow[i].b;
        g.meetings.push_back(narrow[i]);
    }
    std::vector<NarrowGap> out;
    for (auto& entry : groups) {
        std::sort(entry.second.meetings.begin(), entry.second.meetings.end(),
                  [](const IslandMeeting& l, const IslandMeeting& r) { return l.gap < r.gap; });
        out.push_back(std::move(entry.second));
    }
    return out;
}

double CopperPicture::openLength(QPointF p, QPointF q) const {
    const QPointF d = q - p;
    const double length = std::hypot(d.x(), d.y());
    const int steps = std::max(1, static_cast<int>(std::ceil(length / (pixel_ / 4.0))));
    int open = 0;
    for (int i = 0; i < steps; ++i) {
        const QPointF at = p + d * ((i + 0.5) / steps);
        int x = 0;
        int y = 0;
        pixelOf(at, x, y);
        if (!isCopper(x, y)) {
            ++open;
        }
    }
    return length * open / steps;
}

}  // namespace wctest
