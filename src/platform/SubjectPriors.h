#pragma once

#include <opencv2/core.hpp>
#include <vector>

// Where the subjects of a picture probably are, as boxes in the pixels of a small working copy: what a
// segmenter starts from. Regions are probably subject (a person's box, the body below a face), cores
// are subject for certain (a face's middle, the middle of a torso), and the reach around each subject is
// where a limb or whatever it holds may still be; beyond every reach is background for certain.
struct SubjectPriors {
    std::vector<cv::Rect> regions;
    std::vector<cv::Rect> cores;
    std::vector<cv::Rect> reaches;

    bool empty() const { return regions.empty(); }
};

namespace SubjectFinding {

// Every subject found in `detection` (an upright 32-bit BGRA copy of the picture, at most 640 pixels on
// its longer side): people standing, faces seen from the front or from either side (each standing for
// the body below it), all of them at once. Only when none is found, the area that stands out in colour
// from the picture's border. The boxes are given in the pixels of `working`, a BGR copy of the same
// picture at a smaller size.
SubjectPriors find(const cv::Mat& detection, const cv::Mat& working);

} // namespace SubjectFinding
