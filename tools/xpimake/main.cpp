/* xpimake: compiles printer descriptions from TOML and turns finished ones back. */
#include "xpi_format.h"

#include <CLI/CLI.hpp>

#include <fstream>
#include <iostream>
#include <string>

static bool WriteFile(const std::string& path, const char* data, std::size_t size)
{
    std::ofstream out(path, std::ios::binary);
    out.write(data, static_cast<std::streamsize>(size));
    out.close();
    if (!out) {
        std::cerr << path << ": cannot be written\n";
    }
    return static_cast<bool>(out);
}

static int Compile(const std::string& from, const std::string& to)
{
    std::vector<std::uint8_t> text;
    if (!ReadXpiBytes(from, text)) {
        std::cerr << from << ": cannot be read\n";
        return 1;
    }
    XpiCompiled compiled = CompileXpi(std::string(text.begin(), text.end()), from);
    for (const XpiError& error : compiled.errors) {
        std::cerr << FormatXpiError(from, error) << '\n';
    }
    if (!compiled.errors.empty()) {
        return 1;
    }
    return WriteFile(to, reinterpret_cast<const char*>(compiled.bytes.data()), compiled.bytes.size()) ? 0 : 1;
}

static int Dump(const std::string& from, const std::string& to)
{
    std::vector<std::uint8_t> bytes;
    if (!ReadXpiBytes(from, bytes)) {
        std::cerr << from << ": cannot be read\n";
        return 1;
    }
    std::string text = DumpXpi(bytes);
    if (to.empty()) {
        std::cout << text;
        return std::cout.good() ? 0 : 1;
    }
    return WriteFile(to, text.data(), text.size()) ? 0 : 1;
}

int main(int argc, char** argv)
{
    CLI::App app("Writes printer descriptions (.XPI) from text (.toml), and text from descriptions.",
                 "xpimake");
    std::string from, to;
    app.require_subcommand(1);
    CLI::App* compile = app.add_subcommand("compile", "compile a text to a description");
    compile->add_option("IN", from, "text to read")->required();
    compile->add_option("OUT", to, "description to write")->required();
    CLI::App* dump = app.add_subcommand("dump", "turn a description back into text");
    dump->add_option("IN", from, "description to read")->required();
    dump->add_option("OUT", to, "text to write; standard output without it");
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& help) {
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        std::cerr << error.what() << "\n\n" << app.help();
        return 2;
    }
    return *compile ? Compile(from, to) : Dump(from, to);
}
