// Util::OpsSubscriptionFileManager: the subscriptions of one ".ops" subscription file.
//
// Made from the file's path, it reads the XML document and adds its subscriptions to the
// process's subscription manager; destroying it removes them again. A file that cannot be read
// or is malformed adds nothing: the problem is reported as a message event and kept as the
// manager's status, which names the file and what is wrong. The element structure is described
// in the README ("Operations manager") and shown in examples/.
#pragma once

#include "Util/Export.h"
#include <vector>

#include "Util/OpsSubscriptionManager.h"
#include "Util/Status.h"
#include "Util/TString.h"

namespace Util {

class ZTUTIL_API OpsSubscriptionFileManager {
public:
    explicit OpsSubscriptionFileManager(const char* path);
    ~OpsSubscriptionFileManager();
    OpsSubscriptionFileManager(const OpsSubscriptionFileManager&) = delete;
    OpsSubscriptionFileManager& operator=(const OpsSubscriptionFileManager&) = delete;

    const TString& GetPath() const { return m_path; }
    // Succeeded once the file's subscriptions are in place; otherwise why not.
    const Status& GetStatus() const { return m_status; }
    std::size_t GetSubscriptionCount() const { return m_count; }

    // Reads and checks a subscription file without adding anything: the subscriptions it would
    // add, or a failed status naming the file and the problem.
    static Status ParseFile(const char* path,
                            std::vector<OpsSubscriptionManager::Subscription>& subscriptions);
    // The same for a document held in memory; name is used in messages.
    static Status ParseText(const char* text, std::size_t length, const char* name,
                            std::vector<OpsSubscriptionManager::Subscription>& subscriptions);

private:
    TString m_path;
    Status m_status;
    std::size_t m_count = 0;
};

} // namespace Util
