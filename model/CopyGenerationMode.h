#pragma once

#include "model/Vocabulary.h"

// Where the texts for an image (its copy) are generated.
enum class CopyGenerationMode { local, cloud };

struct CopyGenerationModeRow {
    CopyGenerationMode value;
    QStringView rawValue;
    int cost;    // credits per image, unless the service names its own price
    QStringView explanation;
};

template <>
struct Vocabulary<CopyGenerationMode> {
    static constexpr std::array rows{
        CopyGenerationModeRow{CopyGenerationMode::local, u"Local", 0,
                              u"Se genera con una IA local. Puede ser más lento y depende de tu "
                              "equipo, pero no tiene coste."},
        CopyGenerationModeRow{CopyGenerationMode::cloud, u"Nube", 10,
                              u"Se genera con una IA en la nube. Es más rápida y ofrece mayor "
                              "precisión en los textos."},
    };
};
static_assert(rowsAreInOrder<CopyGenerationMode>());

enum class LocalAIEngine { gemma4E2B };

struct LocalAIEngineRow {
    LocalAIEngine value;
    QStringView rawValue;
    QStringView title, shortTitle, subtitle;
};

template <>
struct Vocabulary<LocalAIEngine> {
    static constexpr std::array rows{
        LocalAIEngineRow{LocalAIEngine::gemma4E2B, u"gemma-4-e2b", u"Gemma 4 E2B", u"Gemma",
                         u"Modelo visual local con MLX. Requiere instalación inicial y varios GB "
                         "libres."},
    };
};
static_assert(rowsAreInOrder<LocalAIEngine>());
