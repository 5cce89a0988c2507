// Writes the file of default settings that is delivered beside the program: makeDefaultSettings FILE

#include <cstdio>

#include <QCoreApplication>

#include "defaultSettings.h"
#include "model/RelayInfo.h"

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().size() != 2) {
        std::fputs("usage: makeDefaultSettings FILE\n", stderr);
        return 2;
    }
    RelayInfo model;
    fillDefaultSettings(model);
    return model.saveToFile(QCoreApplication::arguments().at(1));
}
