#pragma once

// What Widget_Contourize hands to the host on Apply. Lengths are engine values.
struct contourize_params {
    double accuracy = 0.0;
    bool separate_to_islands = true;
    double max_size = 0.0;
    int mode = 1;  // 1 "X or Y", 2 "X and Y", 3 "Area"
};
