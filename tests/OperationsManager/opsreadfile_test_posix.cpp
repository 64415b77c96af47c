// Subscription files that are not regular files: directories, FIFOs and devices are refused at
// once with the system's reason (POSIX only: mkfifo and /dev/zero).
#include <sys/stat.h>

#include "OperationsManager/src/opsreadfile.h"
#include "Util/OpsSubscriptionFileManager.h"
#include "tests/OperationsManager/ops_test_support.h"

using Util::OpsSubscriptionFileManager;
using namespace OpsTest;
using SubscriptionList = std::vector<Util::OpsSubscriptionManager::Subscription>;

TEST(OpsFile, OnlyRegularFilesOfBoundedSizeAreRead) {
    TempDir dir;
    dir.Write("big.ops", std::string(Util::OpsDetail::kMaxSubscriptionFileSize + 1, ' '));
    const std::string fifo = dir.Path() + "/fifo.ops";
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const struct {
        std::string path;
        const char* reason;
    } cases[] = {
        {dir.Path(), "Is a directory"},
        {fifo, "not a regular file"}, // no writer: refused, not waited for
        {"/dev/zero", "not a regular file"},
        {dir.Path() + "/big.ops", "larger than"},
        {dir.Path() + "/%Reason%x.ops", "No such file"},
    };
    for (const auto& c : cases) {
        SubscriptionList subscriptions;
        Util::Status status = OpsSubscriptionFileManager::ParseFile(c.path.c_str(), subscriptions);
        const std::string message = status.GetStatusMessage().c_str();
        EXPECT_EQ(status.GetStatusCode(), -8) << message;
        EXPECT_NE(message.find("\"" + c.path + "\" cannot be read: "), std::string::npos)
            << message;
        EXPECT_NE(message.find(c.reason), std::string::npos) << message;
    }
}
