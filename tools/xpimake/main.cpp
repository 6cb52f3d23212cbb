/* xpimake: compiles printer descriptions from TOML and turns finished ones back. */
#include "xpi_format.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <stdexcept>
#include <string>

#include "tools/save_file.h"

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
    SaveFile(to, compiled.bytes.data(), compiled.bytes.size());
    return 0;
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
    SaveFile(to, text.data(), text.size());
    return 0;
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
    try {
        return *compile ? Compile(from, to) : Dump(from, to);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
