#include "copygen/InstallChecks.h"

#include "platform/Memory.h"

#include <QStorageInfo>
#include <QSysInfo>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double gigabyte = 1e9;
constexpr qint64 neededMemory = 8;              // GB
constexpr qint64 spareBytes = 1'100'000'000;    // beside the model: the engine and some room

bool thisOneHasAVX2()
{
#ifdef Q_PROCESSOR_X86_64
    return __builtin_cpu_supports("avx2");
#else
    return true;    // other processors have none, and are quick all the same
#endif
}

}    // namespace

Machine Machine::thisOne(const QString& folder)
{
#ifdef Q_OS_MACOS
    constexpr bool isMac = true;
#else
    constexpr bool isMac = false;
#endif
    return {QSysInfo::currentCpuArchitecture(), totalMemory(),
            QStorageInfo(folder).bytesAvailable(), thisOneHasAVX2(), isMac};
}

QString whyNotInstallable(const Machine& machine, qint64 missingBytes)
{
    const bool isFit =
        machine.processor == u"arm64"_s || (machine.processor == u"x86_64"_s && !machine.isMac);
    if (!isFit) {
        return u"La generación local necesita un procesador de 64 bits (x86_64 o aarch64) o un Mac "
               "con Apple Silicon. Usa la IA en la nube."_s;
    }
    // A machine sold with 8 GB reports somewhat less.
    const qint64 memory = std::llround(double(machine.memory) / gigabyte);
    if (machine.memory > 0 && memory < neededMemory) {
        return u"Este equipo tiene %1 GB de memoria; Gemma 4 E2B necesita %2 GB."_s.arg(memory).arg(
            neededMemory);
    }
    const qint64 neededBytes = std::max<qint64>(0, missingBytes) + spareBytes;
    if (machine.free >= 0 && machine.free < neededBytes) {
        const double tenths = std::ceil(double(neededBytes) / gigabyte * 10);
        return u"No hay espacio suficiente: hacen falta %1 GB libres para instalar Gemma 4 E2B."_s
            .arg(QString::number(tenths / 10, 'f', 1).replace(u'.', u','));
    }
    return {};
}

QString processorWarning(const Machine& machine)
{
    return machine.hasAVX2
               ? QString()
               : u"Este procesador no tiene AVX2: cada imagen puede tardar varios minutos."_s;
}
