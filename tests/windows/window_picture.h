/* Pictures of windows, as they stand on the screen. */
#ifndef TQUI_TESTS_WINDOWS_WINDOW_PICTURE_H
#define TQUI_TESTS_WINDOWS_WINDOW_PICTURE_H

#include <string>

#include <windows.h>

/* Writes what the screen shows in the window's rectangle as a BMP file. False when it could not be written. */
bool WritePicture(HWND hWindow, const std::string& path);

#endif
