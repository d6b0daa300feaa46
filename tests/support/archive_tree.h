#pragma once

// Archives of a test's own, entered into a tree of internal paths.

#include "Korvane/archives/pack_file.h"
#include "tests/support/pack_builder.h"
#include "tests/support/temporary_folder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace korvane::test
{

inline void enterArchive(path_tree& tree, const temporary_folder& folder, const std::string& name,
                         std::vector<test_entry> entries)
{
    test_pack pack;
    pack.entries = std::move(entries);
    writeBytes(folder.file(name), pack.bytes());
    pack_file archive(tree);
    failure why;
    ASSERT_TRUE(archive.open(folder.file(name), why)) << describe(why);
    archive.enter();
}

} // namespace korvane::test
