#pragma once
// A copper layer as a picture: which pixels are copper, the islands they form, and how far
// apart two islands are wherever they face each other.
//
// Pixels are square, `pixel` nanometres wide; the picture's lower left corner sits at (left,
// bottom) in engine coordinates (nanometres, y up), and row 0 is the top row, as an image is
// stored. A pixel is copper when its centre is (at least half of it is, for a rendered picture).
//
// Islands are the 8-connected components of copper pixels, numbered from 1. Gaps come from an
// exact Euclidean distance transform that keeps, for every pixel, the nearest copper pixel (its
// source): where two neighbouring pixels have sources on different islands, the two sources
// face each other across the gap, and their distance less one pixel is the gap, edge to edge (a
// copper pixel centre lies half a pixel inside its edge on average). Such a pair of sources is
// a "meeting"; the smallest meetings of a pair of islands are where the two come closest.

#include <QImage>
#include <QPointF>
#include <cstdint>
#include <vector>

namespace wctest {

// Two islands facing each other: the gap estimate and the two copper pixel centres across it
// (engine coordinates).
struct IslandMeeting {
    int a = 0;  // a < b
    int b = 0;
    double gap = 0.0;  // nm, edge to edge
    QPointF on_a;
    QPointF on_b;
    QPointF middle() const { return (on_a + on_b) / 2.0; }
};

// One stretch where two islands come closer than a limit: its meetings, smallest first.
struct NarrowGap {
    int a = 0;
    int b = 0;
    std::vector<IslandMeeting> meetings;
    const IslandMeeting& closest() const { return meetings.front(); }
};

class CopperPicture {
public:
    // `copper` holds width x height bytes, row 0 at the top, non-zero for copper. Meetings are
    // kept up to `max_gap` nanometres.
    CopperPicture(int width, int height, double left, double bottom, double pixel,
                  std::vector<uint8_t> copper, double max_gap);

    // Copper where the green channel reaches half its range (a rendering with antialiased
    // edges is cut where a pixel is half covered).
    static CopperPicture fromImage(const QImage& image, double left, double bottom, double pixel,
                                   double max_gap);

    int width() const { return width_; }
    int height() const { return height_; }
    double pixel() const { return pixel_; }
    int islandCount() const { return islands_; }

    // Engine coordinates of a pixel centre, and the pixel a point falls in.
    QPointF centre(int column, int row) const;
    void pixelOf(QPointF p, int& column, int& row) const;

    // True when the point lies inside the picture at least `margin` nm from its edges.
    bool contains(QPointF p, double margin) const;
    bool isCopper(int column, int row) const;
    int islandAt(int column, int row) const;  // 0 off copper or outside

    // Islands with a copper pixel centre within `radius` nm of the point.
    std::vector<int> islandsNear(QPointF p, double radius) const;
    // True when the island has a pixel in the picture's outer `margin` nm.
    bool reachesBorder(int island, double margin) const;

    // The smallest meeting of islands a and b whose middle lies within `radius` nm of `p`;
    // false when they do not meet there.
    bool meetingNear(int a, int b, QPointF p, double radius, IslandMeeting& out) const;

    // Every stretch where two islands come closer than `below` nm; the meetings of one island
    // pair that lie within `join` nm of each other form one stretch.
    std::vector<NarrowGap> narrowGaps(double below, double join) const;

    // Length of the segment that does not lie on copper (nm), sampled at a quarter pixel.
    double openLength(QPointF p, QPointF q) const;

private:
    struct Meeting {
        int32_t source_a;  // pixel index on island a
        int32_t source_b;
        float gap;  // pixels
    };
    void label();
    void transform();
    void collectMeetings(double max_gap);
    IslandMeeting toMeeting(const Meeting& m) const;
    int cellOf(double column, double row) const;

    int width_;
    int height_;
    double left_;
    double bottom_;
    double pixel_;
    std::vector<uint8_t> copper_;
    std::vector<int32_t> island_;  // per pixel, 0 off copper
    std::vector<int32_t> source_;  // per pixel, index of its nearest copper pixel, -1 none
    struct Box {
        int x0, y0, x1, y1;  // pixels, inclusive
    };
    std::vector<Box> boxes_;  // per island, index 0 unused
    int islands_ = 0;
    std::vector<Meeting> meetings_;
    // Meetings bucketed by the cell of their middle, for the searches near a point.
    int cell_ = 16;
    int cells_x_ = 1;
    int cells_y_ = 1;
    std::vector<std::vector<int32_t>> buckets_;
};

}  // namespace wctest
