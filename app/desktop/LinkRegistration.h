#pragma once

#include <memory>

// Makes the desktop open links of the scheme "moltiva" with this program. Each platform has its own
// way.
class LinkRegistration {
public:
    virtual ~LinkRegistration() = default;
    // Returns before it is done. Nobody learns of a failure: everything but links works without.
    virtual void registerCurrentApp() = 0;
};

// The way of this platform. On macOS and Windows, the installer registers the program.
std::unique_ptr<LinkRegistration> platformLinkRegistration();
