#pragma once

#include "platform/Image.h"
#include "platform/PhotoPicker.h"

#include <QObject>
#include <functional>
#include <vector>

// Loads the pictures of picked items side by side and hands them over on the main queue in the order they
// were picked, whatever order the loads finish in. Items that are not pictures, or fail to decode, are
// left out. `done` runs once, and only while `owner` (when given) still exists.
void loadImagesInOrder(const std::vector<PickerResult>& results, QObject* owner,
                       std::function<void(std::vector<ImagePtr>)> done);
