#pragma once

#include "TemporaryFolder.h"

#include <gtest/gtest.h>

/// A test with an empty folder of its own.
class FolderTest : public testing::Test {
  protected:
    std::string at(const std::string& name) const { return _folder.at(name); }
    void put(const std::string& name, const std::string& content) const { _folder.put(name, content); }
    std::size_t fileCount() const { return _folder.entryCount(); }

    ka_test::TemporaryFolder _folder;
};
