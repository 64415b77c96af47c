#include <gtest/gtest.h>

#include "Util/ProfileLocations.h"

#include <string>

namespace {

using namespace Util::ProfileLocations;

TEST(ProfileLocations, DataDirectoryReplacesTheProgramSegment) {
    EXPECT_EQ(std::string(DeriveDataDirectory("/opt/tw/ZTEXE/bin/").c_str()),
              "/opt/tw/ZTDATA/bin/");
    EXPECT_EQ(std::string(DeriveDataDirectory("/opt/tw/ZTEXE2/").c_str()), "/opt/tw/ZTEXE2/");
    EXPECT_EQ(std::string(DeriveDataDirectory("/opt/ztexe/").c_str()), "/opt/ztexe/");
}

TEST(ProfileLocations, OverrideWinsAndDerivesTheMissingDataDirectory) {
    SetDirectories("/srv/app/ZTEXE", nullptr);
    EXPECT_EQ(std::string(GetProgramDirectory().c_str()), "/srv/app/ZTEXE/");
    EXPECT_EQ(std::string(GetDataDirectory().c_str()), "/srv/app/ZTDATA/");
    EXPECT_EQ(std::string(GetFileLocationsPath().c_str()), "/srv/app/ZTDATA/FileLocations.ini");
    SetDirectories("/srv/app/ZTEXE/", "/var/lib/tw");
    EXPECT_EQ(std::string(GetDataDirectory().c_str()), "/var/lib/tw/");
    SetDirectories(nullptr, nullptr);
    EXPECT_FALSE(GetProgramDirectory().IsEmpty()) << "back to the executable's folder";
}

} // namespace
