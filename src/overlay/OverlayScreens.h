#pragma once

// Makes the sticker catalogue, its category grid and the text entry available from the "Main" board.
void registerOverlayScreens();
