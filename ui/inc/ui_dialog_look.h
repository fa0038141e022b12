// What a dialog draws beyond the state of its controls, for hosts that draw:
// the window icon, controls whose background lets what lies beneath show
// through, and whether a user may size the window. A dialog fills it (its
// constructor or OnInitDialog may); the headless host has nothing to draw.
#pragma once

#include <algorithm>
#include <vector>

namespace korv::ui {

struct DialogLook {
    // Resource id of the window icon: the image named by the number in res/
    // beside the program. 0: none.
    int icon = 0;
    // Controls drawn without a background of their own, such as a caption
    // laid over a bitmap; other static controls fill theirs.
    std::vector<int> transparent;
    // A user may size the window; gripper: a size grip at the bottom right.
    bool sizable = false;
    bool gripper = false;

    bool is_transparent(int id) const {
        return std::find(transparent.begin(), transparent.end(), id) != transparent.end();
    }
};

// Limits of the client size in dialog units, asked for while a user sizes a
// window; 0 leaves a limit to the host.
struct SizeLimits {
    int min_cx = 0;
    int min_cy = 0;
    int max_cx = 0;
    int max_cy = 0;
};

} // namespace korv::ui
