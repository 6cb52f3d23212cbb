/* The sample models for the tests of the description compiler, and plain reading of what came out. */
#pragma once

#include "places.h"
#include "xpi_format.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

inline constexpr const char* MODELS[] = {"T410A", "QP5", "QPS", "K100", "IX300", "T440B"};
inline constexpr std::size_t BODY = 64;

inline std::string ModelPath(const std::string& name)
{
    return std::string(TQUI_SOURCE_DIR) + "/package/models/" + name;
}

inline std::string ReadText(const std::string& path)
{
    Bytes bytes;
    EXPECT_TRUE(ReadXpiBytes(path, bytes)) << path;
    return std::string(bytes.begin(), bytes.end());
}

inline XpiCompiled CompileModel(const std::string& model, const std::vector<XpiOverride>& changes = {})
{
    XpiCompiled compiled = CompileXpi(ReadText(ModelPath(model + ".toml")), model, changes);
    for (const XpiError& error : compiled.errors) {
        ADD_FAILURE() << FormatXpiError(model, error);
    }
    return compiled;
}

/* Plain reading and writing of numbers, on purpose not the library's. */
inline std::uint32_t Get(const Bytes& file, std::size_t at, std::size_t width)
{
    std::uint32_t value = 0;
    for (std::size_t i = width; i-- > 0;) {
        value = value << 8 | file.at(at + i);
    }
    return value;
}

inline void Put(Bytes& file, std::size_t at, std::size_t width, std::uint32_t value)
{
    for (std::size_t i = 0; i < width; i++) {
        file.at(at + i) = static_cast<std::uint8_t>(value >> (8 * i));
    }
}

inline std::string TextAt(const Bytes& file, std::size_t at)
{
    return reinterpret_cast<const char*>(&file.at(at));
}

inline std::string FileString(const Bytes& file, unsigned language, unsigned id)
{
    std::uint32_t base = Get(file, Get(file, 12, 4) + 2 * language, 2);
    return TextAt(file, Get(file, 20, 4) + Get(file, Get(file, 16, 4) + 2 * (base + id), 2));
}

inline std::string FileCommand(const Bytes& file, unsigned id)
{
    return TextAt(file, Get(file, 28, 4) + Get(file, Get(file, 24, 4) + 2 * id, 2));
}

inline std::size_t Table(const Bytes& file, std::size_t slot)
{
    EXPECT_EQ(Get(file, BODY + slot + 4, 4), 0u);
    return BODY + Get(file, BODY + slot, 4);
}
