// One QApplication for the whole runner, made before the first test and kept to the end.

#include <QApplication>

#include <gtest/gtest.h>

namespace {

class QtApplicationEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        if (QApplication::instance() == nullptr)
            mApplication = new QApplication(mArgc, mArgv);
    }
    // The application is left alive on purpose: widgets of the plug-in (which is never unloaded)
    // may still exist at exit, and deleting the application before them would crash the run.

private:
    int mArgc = 1;
    char mName[9] = "ui_tests";
    char* mArgv[2] = {mName, nullptr};
    QApplication* mApplication = nullptr;
};

const auto* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new QtApplicationEnvironment());

}  // namespace
