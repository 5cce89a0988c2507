#include "texts/texts.h"

namespace texts
{

#define TEXT(name, text)                                                                                               \
    QString name()                                                                                                     \
    {                                                                                                                  \
        return QStringLiteral(text);                                                                                   \
    }
#include "texts/furtherTexts.inc"
#include "texts/texts.inc"
#undef TEXT

QStringList catalogue()
{
    return
    {
#define TEXT(name, text) name(),
#include "texts/texts.inc"
#undef TEXT
    };
}

} // namespace texts
