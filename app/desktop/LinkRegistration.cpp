#include "app/desktop/LinkRegistration.h"

#include "app/desktop/XdgLinkHandler.h"
#include "platform/Workers.h"

#include <QCoreApplication>

namespace {

#if defined(Q_OS_LINUX)
class XdgRegistration : public LinkRegistration {
public:
    void registerCurrentApp() override
    {
        startOnWorker([folders = XdgFolders::ofEnvironment(),
                       program = QCoreApplication::applicationFilePath()] {
            registerLinkHandler(folders, program);
        });
    }
};
using Registration = XdgRegistration;
#else
class InstalledRegistration : public LinkRegistration {
public:
    void registerCurrentApp() override {}
};
using Registration = InstalledRegistration;
#endif

}    // namespace

std::unique_ptr<LinkRegistration> platformLinkRegistration()
{
    return std::make_unique<Registration>();
}
