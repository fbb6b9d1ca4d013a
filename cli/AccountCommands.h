#pragma once

#include <QStringList>

struct ServiceConfiguration;

// Account commands, on the session that the window uses too. They read passwords from the terminal
// or standard input, never from an argument, which every process may see. Each returns the exit
// status.
int runLogin(const QStringList& arguments, const ServiceConfiguration& configuration);
int runRegister(const QStringList& arguments, const ServiceConfiguration& configuration);
int runLogout(const QStringList& arguments, const ServiceConfiguration& configuration);
int runAccount(const QStringList& arguments, const ServiceConfiguration& configuration);
int runHistory(const QStringList& arguments, const ServiceConfiguration& configuration);
