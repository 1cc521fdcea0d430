#pragma once

// Registers the classic collage's screens: the grid of frames and the editor.
void registerFramesScreens();
