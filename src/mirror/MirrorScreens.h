#pragma once

// Makes the mirror editor available from the "Main" board.
void registerMirrorScreens();
