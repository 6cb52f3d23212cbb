/* How all tools save a file: whole or not at all. */
#ifndef TQUI_TOOLS_SAVE_FILE_H
#define TQUI_TOOLS_SAVE_FILE_H

#include <cstddef>
#include <filesystem>

/* Writes the bytes into a new file beside the old one, which keeps its content until the new one is on the disk and
   takes its name and permissions. A link leads to the file that is replaced, and stays. What is there and is no plain
   file, as a device or a pipe, is left alone.
   Throws std::runtime_error with a sentence for the user; nothing is changed then. */
void SaveFile(const std::filesystem::path& path, const void* pBytes, std::size_t cb);

#endif
