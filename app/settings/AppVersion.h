#pragma once

#include <QString>

#include <optional>

// What version of the program runs.
namespace AppVersion {

QString current();
QString build();      // rises with every build of a version that is given out
QString display();    // both
// Compares the numbers, part by part; letters after them by the alphabet. Nothing is not newer.
bool isRemoteVersionNewer(const std::optional<QString>& remote);

}    // namespace AppVersion
