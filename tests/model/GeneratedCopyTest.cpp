#include "model/GeneratedCopy.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

TEST(GeneratedCopy, callToActionIsCleanedAndReplacedOnlyWhenTooLong)
{
    struct Case {
        QStringView written, becomes;
    };
    const Case cases[] = {
        {u"  \"Reserva ya\"!\n", u"Reserva ya"},
        {u"Pide\ntu\rcita", u"Pide tu cita"},
        {u"", u"Descubre más"},
        {u"¡¿?!", u"Descubre más"},
        {u"Uno dos tres cuatro", u"Uno dos tres cuatro"},
        {u"Uno dos tres cuatro cinco", u"Descubre más"},
        {u"123456789012345678901234", u"123456789012345678901234"},
        {u"1234567890123456789012345", u"Descubre más"},
        {u"Hoy. Mañana", u"Descubre más"},
        {u"RESÉRVALO. Y ven a vernos", u"Reserva ahora"},
        {u"Ven a comprar en nuestra tienda", u"Comprar ahora"},
        {u"Mira la nueva colección de otoño", u"Ver colección"},
        {u"Puedes contactarnos por teléfono", u"Contactar"},
        {u"Inscribete en el curso de verano", u"Inscríbete"},
        {u"Te invitamos a ver todos los platos", u"Ver más"},
        {u"! ?", u"Descubre más"},
        {u"Reserva una cita para comprar hoy", u"Reserva ahora"},
        {u"Solicita y compra en la web hoy", u"Pide tu cita"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(GeneratedCopy::normalizedCallToAction(c.written.toString()), c.becomes)
            << qPrintable(c.written.toString());
    }
}

TEST(GeneratedCopy, charactersAreCountedAsAReaderWould)
{
    const QString family = u"👨‍👩‍👧"_s;    // one character, eight code units
    EXPECT_EQ(GeneratedCopy::normalizedCallToAction(family.repeated(24)), family.repeated(24));
    EXPECT_EQ(GeneratedCopy::normalizedCallToAction(family.repeated(25)), u"Descubre más"_s);
}

TEST(GeneratedCopy, aBuiltCopyCarriesACleanCallToAction)
{
    const GeneratedCopy copy(u"t"_s, u"s"_s, u"p"_s, u"\"Ver más.\""_s, u"c"_s, u"n"_s);
    EXPECT_EQ(copy.text(CopySlot::callToAction), u"Ver más"_s);
    EXPECT_EQ(copy.text(CopySlot::tagline), u"p"_s);
}
