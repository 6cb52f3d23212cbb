/* What a test needs that runs on both builds: a folder of its own, files in it, the built package. */
#ifndef TQUI_TESTS_BOTH_BUILDS_H
#define TQUI_TESTS_BOTH_BUILDS_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/basic.h"

using WideString = std::basic_string<WCHAR>;

/* Starts the hosted machine before each test and stops it behind it; on Windows nothing. After each test
   nothing may be held any more: blocks, files, printers, keys, modules. */
class BothBuilds : public ::testing::Test {
  protected:
    void SetUp() override;
    void TearDown() override;
};

/* A fresh folder for the running test, as "C:\tqui-test\nnn"; it exists and is empty. */
WideString TestFolder();

void PutTestFile(const WideString& tcPath, const std::vector<unsigned char>& bytes);
void PutTestFile(const WideString& tcPath, const std::string& text);
std::vector<unsigned char> ReadTestFile(const WideString& tcPath); /* empty when there is none */

/* A path by which a file of the built package (build/package, or the folder named by the environment
   variable TQUI_BUILT) can be opened on this build. The test fails when it was not built. */
WideString BuiltFile(const char* cName);

/* ASCII text of either width as the other. */
WideString Wide(const std::string& text);
std::string Ascii(const WideString& wcText); /* others than ASCII as \uXXXX */

#endif
