// ztutil time: runs a command and reports how long it took and how many page faults it took,
// through the library's stopwatches. Also the demo of the foundation services.
#include "tools/ztutil/cmd_time_platform.h"
#include "tools/ztutil/registry.h"

#include "Util/AsynchronousOperation.h"
#include "Util/Exception.h"
#include "Util/FactoryRegistrar.h"
#include "Util/PTimer.h"
#include "Util/ProcessInfo.h"
#include "Util/RunningObjectTable.h"
#include "Util/Win32Time.h"

#include <iostream>

namespace {

constexpr const char* kTimeUsage = "time COMMAND [ARGUMENT...]";

int RunTime(const std::vector<std::string>& args) {
    if (args.empty())
        return ztutil::UsageError(kTimeUsage, "time needs a command to run");
    Util::PerformanceInfo* coarse = Util::PerformanceInfo::instance();
    Util::PerformanceInfoHP* fine = Util::PerformanceInfoHP::instance();
    if (coarse == nullptr || fine == nullptr) {
        std::cerr << "ztutil: the timers are not available\n";
        return 1;
    }
    ztutil::ChildRun run;
    std::string error;
    coarse->Start(Util::Win32::GetTickCount());
    fine->Start(Util::APTimer::Microseconds);
    const bool started = ztutil::RunChild(args, run, error);
    const long microseconds = fine->GetTimeDelta();
    const unsigned long milliseconds = coarse->GetTickCountDelta();
    if (!started) {
        std::cerr << "ztutil: cannot run " << args[0] << ": " << error << "\n";
        return 1;
    }
    std::cout << "command:     " << args[0] << "\n"
              << "exit status: " << run.exitCode << "\n"
              << "wall:        " << milliseconds << " ms\n"
              << "wall:        " << microseconds << " us\n"
              << "page faults: " << run.pageFaults << "\n";
    return run.exitCode == 0 ? 0 : 1;
}

// ---- demo ----

class SumOperation : public Util::AsynchronousOperation {
public:
    explicit SumOperation(unsigned long intervalMs) : AsynchronousOperation(intervalMs) {}

    long Sum(long upTo, UpdateCallback* callback) {
        class SumCommand : public WorkerCommand {
        public:
            SumCommand(AsynchronousOperation* operation, long upTo)
                : WorkerCommand(operation), m_upTo(upTo) {}
            long Execute() override {
                long total = 0;
                for (long i = 1; i <= m_upTo; ++i)
                    total += i;
                return total;
            }

        private:
            long m_upTo;
        };
        return DoExecute(new SumCommand(this, upTo), callback);
    }
};

class CountingCallback : public Util::AsynchronousOperation::UpdateCallback {
public:
    long Update() override { return ++calls, 0; }
    int calls = 0;
};

struct GreetingFactory : Util::FactoryRegistrar::BaseFactory {
    const char* Greet() const { return "hello from the Greeting factory"; }
};

void DemoFoundation(std::ostream& out) {
    Util::APTimer timer;
    timer.Start(Util::APTimer::Microseconds);

    SumOperation operation(100);
    CountingCallback callback;
    long sum = operation.Sum(1000, &callback);
    out << "worker thread: sum of 1..1000 = " << sum << " (update callback called "
        << callback.calls << " times)\n";

    static const GreetingFactory greeting;
    Util::FactoryRegistrar::RegisterFactory("Greeting", greeting);
    const auto& factory =
        static_cast<const GreetingFactory&>(Util::FactoryRegistrar::GetFactory("GREETING"));
    out << "factory lookup (case-blind): " << factory.Greet() << "\n";
    try {
        Util::FactoryRegistrar::GetFactory("Unknown");
    } catch (const std::exception& e) {
        out << "unknown factory: " << e.what() << "\n";
    }

    Util::Object ledger;
    Util::SystemObjectRegistrar* table = Util::SystemObjectRegistrar::instance();
    table->AddObject(&ledger, "Ledger");
    out << "running object table: 'ledger' is " << (table->GetObject("ledger") ? "" : "not ")
        << "registered; removed once: " << (table->RemoveObject("LEDGER") ? "yes" : "no")
        << ", twice: " << (table->RemoveObject("LEDGER") ? "yes" : "no") << "\n";

    out << "page faults so far: " << Util::GetProcessPageFaultCount(Util::CurrentProcessHandle())
        << "\n"
        << "this demo section took " << timer.GetTimeDelta() << " us\n";
}

} // namespace

ZTUTIL_COMMAND(time, kTimeUsage,
               "Run a command and report its wall time (ms and us) and page faults", RunTime);
ZTUTIL_DEMO(90, "Foundation services", DemoFoundation);
