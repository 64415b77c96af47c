#include "Util/FactoryRegistrar.h"
#include "Util/RunningObjectTable.h"
#include "tests/Foundation/factoryplugin/widgetfactory.h"
#include "tests/OperationsManager/ops_test_support.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

using Util::FactoryRegistrar;

namespace {

struct NumberFactory : FactoryRegistrar::BaseFactory {
    explicit NumberFactory(int n) : number(n) {}
    int number;
};

std::string ExpectThrowText(const char* name, const char* library = nullptr) {
    try {
        if (library != nullptr)
            FactoryRegistrar::GetFactory(name, library);
        else
            FactoryRegistrar::GetFactory(name);
    } catch (const std::exception& e) {
        return e.what();
    }
    return "<no exception>";
}

// A private copy of the plugin, so that each test decides when its library is first loaded.
std::string CopyOfPlugin(const OpsTest::TempDir& dir, const char* name) {
    std::string path = dir.File(name);
    std::filesystem::copy_file(ZT_FACTORY_PLUGIN_PATH, path);
    return path;
}

} // namespace

TEST(FactoryRegistrar, FirstRegistrationOfANameInAnyCaseWinsForGood) {
    static const NumberFactory first(1), second(2);
    FactoryRegistrar::RegisterFactory("Alpha", first);
    FactoryRegistrar::RegisterFactory("ALPHA", second);
    FactoryRegistrar::UnRegisterFactory("alpha");
    const auto& found = static_cast<const NumberFactory&>(FactoryRegistrar::GetFactory("alpha"));
    EXPECT_EQ(found.number, 1);
    EXPECT_EQ(ExpectThrowText("Beta"), "Factory is not yet registered");
}

TEST(FactoryRegistrar, LoadsTheLibraryThatRegistersAMissingFactoryOnce) {
    OpsTest::TempDir dir;
    const std::string path = CopyOfPlugin(dir, "widgets.plugin");
    const auto& factory =
        static_cast<const WidgetFactory&>(FactoryRegistrar::GetFactory("pluginwidget", path));
    EXPECT_EQ(factory.Make(), 1234);
    EXPECT_EQ(&FactoryRegistrar::GetFactory("PLUGINWIDGET"), &factory);

    EXPECT_EQ(ExpectThrowText("Gadget", path.c_str()),
              "Factory is not yet registered, even after loading DLL");
    // Once loaded, the library is never opened again: its file may even be gone.
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    EXPECT_EQ(ExpectThrowText("Gadget", path.c_str()),
              "Factory is not yet registered, even after loading DLL");
}

TEST(FactoryRegistrar, ALibraryThatCannotLoadThrowsWithTheLoadersStatus) {
    OpsTest::TempDir dir;
    const std::string missing = dir.File("missing.plugin");
    try {
        FactoryRegistrar::GetFactory("Anything", missing);
        FAIL() << "no exception";
    } catch (const FactoryRegistrar::LibraryLoadError& e) {
        EXPECT_TRUE(e.GetStatus().Failed());
        long error = 0;
        Util::TString library;
        EXPECT_TRUE(e.GetStatus().GetLongAttribute("Win32Error", error));
        EXPECT_EQ(error, 126);
        EXPECT_TRUE(e.GetStatus().GetStringAttribute("Library", library));
        EXPECT_EQ(library.c_str(), missing);
    }
    // Nothing was remembered: once the library exists it loads.
    std::filesystem::copy_file(ZT_FACTORY_PLUGIN_PATH, missing);
    EXPECT_NO_THROW(FactoryRegistrar::GetFactory("PluginWidget", missing));
}

TEST(FactoryRegistrar, ThreadsRegisterLoadAndLookUpTogether) {
    OpsTest::TempDir dir;
    const std::string path = CopyOfPlugin(dir, "shared.plugin");
    // Registered factories must live as long as the process.
    static const std::vector<NumberFactory> factories = [] {
        std::vector<NumberFactory> made;
        for (int i = 0; i < 8 * 50; ++i)
            made.emplace_back(i);
        return made;
    }();
    std::vector<std::thread> threads;
    std::atomic<int> failures{0};
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&, t] {
            for (int i = t * 50; i < t * 50 + 50; ++i) {
                const std::string name = "Threaded" + std::to_string(i);
                FactoryRegistrar::RegisterFactory(name.c_str(), factories[i]);
                const auto& got =
                    static_cast<const NumberFactory&>(FactoryRegistrar::GetFactory(name.c_str()));
                if (got.number != i)
                    ++failures;
            }
            const auto& widget = static_cast<const WidgetFactory&>(
                FactoryRegistrar::GetFactory("PluginWidget", path));
            if (widget.Make() != 1234)
                ++failures;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(failures.load(), 0);
}

TEST(RunningObjectTable, HoldsObjectsByCaseBlindNameWithoutOwningThem) {
    Util::TRunningObjectTable<Util::Object> table;
    Util::Object first, second;
    table.AddObject(&first, "Ledger");
    EXPECT_EQ(table.GetObject("LEDGER"), &first);
    table.AddObject(&second, "ledger");
    EXPECT_EQ(table.GetObject("Ledger"), &second);
    table.AddObject(nullptr, "Journal");
    table.AddObject(&first, nullptr);
    EXPECT_EQ(table.GetObject("Journal"), nullptr);
    EXPECT_EQ(table.GetObject(nullptr), nullptr);

    EXPECT_EQ(table.RemoveObject("LEDGER"), &second);
    EXPECT_EQ(table.RemoveObject("Ledger"), nullptr);
    EXPECT_EQ(table.RemoveObject(nullptr), nullptr);
    EXPECT_EQ(table.GetObject("ledger"), nullptr);
}

TEST(RunningObjectTable, SystemRegistrarIsOneTableForTheProcess) {
    Util::SystemObjectRegistrar* registrar = Util::SystemObjectRegistrar::instance();
    ASSERT_NE(registrar, nullptr);
    Util::Object object;
    registrar->AddObject(&object, "SystemThing");
    EXPECT_EQ(Util::SystemObjectRegistrar::instance()->GetObject("systemthing"), &object);
    EXPECT_EQ(registrar->RemoveObject("SYSTEMTHING"), &object);
}
