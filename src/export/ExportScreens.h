#pragma once

// Makes the share screen and the format chooser available from the "Main" board.
void registerExportScreens();
