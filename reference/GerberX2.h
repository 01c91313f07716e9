#pragma once
// The Gerber X2 attributes of a file, read in a pass of our own: libgerbv draws the graphics but
// drops the attributes (%TF, %TA, %TO, %TD), and with them the layer's function and the nets.
//
// File attributes: ".FileFunction" and ".FilePolarity" as written, fields joined by ','.
// Object attributes: every flash, draw and region made while a %TO.N attribute is in force is
// listed with its net and the point libgerbv also puts it at (a flash's position, a draw's end,
// a region's first vertex), in nanometres, so that a feature read through libgerbv finds its
// net by position. A malformed attribute is logged with the file and line and ignored; the
// rest of the file is still read.

#include <string>
#include <vector>

#include "Korvo_API_types.h"

namespace wcref {

struct X2Object {
    Korvo::API::point at;  // nanometres
    std::string net;       // %TO.N value; "N/C" marks a pad that is not connected
    enum Kind { flash, draw, region } kind = flash;
};

struct X2Attributes {
    std::string file_function;  // "Copper,L1,Top", "Soldermask,Bot", "Profile,NP", ...
    std::string file_polarity;  // "Positive", "Negative" or empty
    std::vector<X2Object> objects;
};

class GerberX2 {
public:
    // Reads the attributes of a Gerber file; empty when it carries none or cannot be read.
    static X2Attributes read(const std::string& path);
    // The same from the file's text; `origin` names it in the log.
    static X2Attributes parse(const std::string& text, const std::string& origin);
    // Gives each feature read through libgerbv the net of the object at its place (a pad's
    // position, a line's or arc's end, a surface's first vertex) as its ".net" attribute;
    // returns how many features were named.
    static size_t nameFeatures(const X2Attributes& attributes,
                               std::vector<Korvo::API::featureInfo>& features);
};

}  // namespace wcref
