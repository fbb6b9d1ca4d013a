#include "service/OfferedProgram.h"

#include "service/ConfiguredValue.h"

using namespace Qt::StringLiterals;

OfferedProgram configuredProgram()
{
    return {configuredValue("MOLTIVA_LATEST_LINUX_VERSION", u"updates/latestLinuxVersion"_s),
            configuredValue("MOLTIVA_LINUX_DOWNLOAD_URL", u"updates/linuxDownloadURL"_s)};
}
