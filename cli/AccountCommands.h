#pragma once

#include <QStringList>

struct ServiceConfiguration;

// The account commands. They share the stored session with the window. They read passwords from the
// terminal or standard input, never from an argument, which other processes could see. Each returns
// the exit status.
int runLogin(const QStringList& arguments, const ServiceConfiguration& configuration);
int runRegister(const QStringList& arguments, const ServiceConfiguration& configuration);
int runLogout(const QStringList& arguments, const ServiceConfiguration& configuration);
int runAccount(const QStringList& arguments, const ServiceConfiguration& configuration);
int runHistory(const QStringList& arguments, const ServiceConfiguration& configuration);
