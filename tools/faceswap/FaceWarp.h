#pragma once

// The pixel steps of a face swap, as pure functions in target coordinates: a Delaunay triangulation of the
// landmarks, a piecewise affine warp of the source face onto the target's geometry, the mask of the face
// hull, a colour match in Lab and the Poisson blend.

#include "FaceDetector.h"

#include <opencv2/core.hpp>

#include <array>
#include <vector>

namespace lumivex::faceswap {

using Triangle = std::array<int, 3>; // indices into a landmark set

// Delaunay triangles over the points. The same index triples are used for the source and the target, so
// each source triangle has one partner on the target face.
std::vector<Triangle> delaunayTriangles(const Landmarks& points);

// The source picture resampled into `area` of the target: inside each triangle of the target's landmarks
// by that triangle's affine map, outside them by one similarity fitted to all landmarks, so the crop has
// source pixels everywhere (Poisson blending reads a little around the mask). BGR, area's size.
cv::Mat warpFaceInto(const cv::Mat& source, const Landmarks& from, const Landmarks& to,
                     const std::vector<Triangle>& triangles, cv::Rect area);

// 255 inside the convex hull of the points (jaw and brows), 0 outside; the size of `area`, in its frame.
cv::Mat faceHullMask(const Landmarks& points, cv::Rect area);

// The hull's bounding box grown by `margin` of the face width on each side, clipped to `size`.
cv::Rect faceArea(const Landmarks& points, cv::Size size, double margin);

// Lab mean and deviation transfer of src towards ref, measured and applied where mask is set.
void matchColours(cv::Mat& src, const cv::Mat& ref, const cv::Mat& mask);

// Poisson (seamless) cloning of `face` into `target`'s `area` under `mask`, with the mask's edge feathered
// inward by `feather` pixels. Pixels outside the mask keep the target's values exactly.
void blendFace(cv::Mat& target, const cv::Mat& face, const cv::Mat& mask, cv::Rect area, int feather);

} // namespace lumivex::faceswap
