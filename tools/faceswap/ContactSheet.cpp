// lumivex-faceswap-sheet: one picture of faces swapped into templates, for a person to judge at a glance.
// The first row shows the templates as drawn, each further row one face swapped into every template.
//
//   lumivex-faceswap-sheet --out FILE --face PHOTO [--face PHOTO...] --template PICTURE [--template ...]

#include "FaceSwap.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <cstring>
#include <iostream>
#include <string>
#include <vector>

using namespace lumivex::faceswap;

namespace {

constexpr int kCellWidth = 160, kCellHeight = 200, kPad = 4;

void place(cv::Mat& sheet, const cv::Mat& picture, int row, int column) {
    const cv::Rect cell(kPad + column * (kCellWidth + kPad), kPad + row * (kCellHeight + kPad), kCellWidth,
                        kCellHeight);
    if (picture.empty()) {
        sheet(cell).setTo(cv::Scalar(80, 0, 255)); // a failed swap shows as a red cell
        return;
    }
    const double scale = std::min(double(kCellWidth) / picture.cols, double(kCellHeight) / picture.rows);
    cv::Mat fitted;
    cv::resize(picture, fitted, cv::Size(), scale, scale, cv::INTER_AREA);
    const cv::Rect at(cell.x + (kCellWidth - fitted.cols) / 2, cell.y + (kCellHeight - fitted.rows) / 2,
                      fitted.cols, fitted.rows);
    fitted.copyTo(sheet(at));
}

// The face and some room around it, so a row's source is easy to recognise.
cv::Mat faceCrop(const cv::Mat& photo, const FaceDetector& detector) {
    const std::vector<Face> faces = detector.detect(photo);
    if (faces.empty())
        return photo;
    const cv::Rect box = faces.front().box;
    const int grow = box.width / 2;
    return photo(cv::Rect(box.x - grow, box.y - grow, box.width + 2 * grow, box.height + 3 * grow) &
                 cv::Rect(0, 0, photo.cols, photo.rows));
}

} // namespace

int main(int argc, char** argv) {
    std::string out;
    std::vector<std::string> faces, templates;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (!std::strcmp(argv[i], "--out"))
            out = argv[i + 1];
        else if (!std::strcmp(argv[i], "--face"))
            faces.emplace_back(argv[i + 1]);
        else if (!std::strcmp(argv[i], "--template"))
            templates.emplace_back(argv[i + 1]);
    }
    if (out.empty() || faces.empty() || templates.empty()) {
        std::cerr << "usage: lumivex-faceswap-sheet --out FILE --face PHOTO... --template PICTURE...\n";
        return 2;
    }
    const FaceSwapper swapper;
    if (!swapper.isReady()) {
        std::cerr << "lumivex-faceswap-sheet: the landmark model " << kDefaultLandmarkModel
                  << " is missing\n";
        return 1;
    }
    const int columns = int(templates.size()) + 1, rows = int(faces.size()) + 1;
    cv::Mat sheet(kPad + rows * (kCellHeight + kPad), kPad + columns * (kCellWidth + kPad), CV_8UC3,
                  cv::Scalar(240, 236, 236));
    std::vector<cv::Mat> pictures;
    for (std::size_t t = 0; t < templates.size(); ++t) {
        pictures.push_back(cv::imread(templates[t], cv::IMREAD_COLOR));
        place(sheet, pictures.back(), 0, int(t) + 1);
    }
    int failures = 0;
    for (std::size_t f = 0; f < faces.size(); ++f) {
        const cv::Mat photo = cv::imread(faces[f], cv::IMREAD_COLOR);
        place(sheet, photo.empty() ? photo : faceCrop(photo, swapper.detector()), int(f) + 1, 0);
        for (std::size_t t = 0; t < pictures.size(); ++t) {
            std::string reason;
            const cv::Mat swapped = photo.empty() ? cv::Mat() : swapper.swap(photo, pictures[t], 0, &reason);
            if (swapped.empty()) {
                ++failures;
                std::cerr << faces[f] << " into " << templates[t] << ": " << reason << "\n";
            }
            place(sheet, swapped, int(f) + 1, int(t) + 1);
        }
    }
    if (!cv::imwrite(out, sheet)) {
        std::cerr << "lumivex-faceswap-sheet: cannot write " << out << "\n";
        return 1;
    }
    std::cout << "lumivex-faceswap-sheet: " << out << " (" << failures << " failed swaps)\n";
    return failures ? 1 : 0;
}
