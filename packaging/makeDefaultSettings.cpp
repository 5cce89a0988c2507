// Writes the file of default settings that is delivered beside the program: makeDefaultSettings FILE

#include "defaultSettings.h"
#include "model/RelayInfo.h"

#include <QCoreApplication>

#include <cstdio>

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
