#pragma once
#include "platform/Desktop.h"

#include <QList>

class FakeDesktop : public Desktop {
public:
    void prefer(const DesktopPreferences& preferences) { setPreferences(preferences); }
    void notify(const DesktopNotice& notice) override { notices.append(notice); }

    QList<DesktopNotice> notices;
};
