#include "support/LoadingOverUnit.h"
#include "support/threadedTestMain.h"

#include <QtTest>

/// Power that fails while firmware is being loaded, at one block after the other: a unit in its bootloader takes the
/// load again, however far the first one came.
///
/// The variable POWER_CUTS names the first block and how many ("1 300"), so that many can be tried side by side.
class tst_power_cuts : public QObject
{
    Q_OBJECT

private slots:
    void aRepeatEndsInTheRightImage_data();
    void aRepeatEndsInTheRightImage();
};

namespace
{

constexpr int fullBlock = 5; ///< types of requests to the bootloader
constexpr int lastBlock = 6;
constexpr int blockSize = 128;
constexpr int fullBlocks = 299; ///< and a short one behind them
constexpr int blocks = fullBlocks + 1;

} // namespace

void tst_power_cuts::aRepeatEndsInTheRightImage_data()
{
    QTest::addColumn<int>("block");
    const QStringList range = qEnvironmentVariable("POWER_CUTS").split(QLatin1Char(' '));
    if (range.size() != 2) {
        for (const int block : {1, 2, 150, 299, blocks}) {
            QTest::addRow("at block %d", block) << block;
        }
        return;
    }
    for (int i = 0; i < range.at(1).toInt(); ++i) {
        QTest::addRow("at block %d", range.at(0).toInt() + i) << range.at(0).toInt() + i;
    }
}

void tst_power_cuts::aRepeatEndsInTheRightImage()
{
    QFETCH(const int, block);
    const QByteArray image = randomImage(fullBlocks * blockSize + 77);
    const bool isLast = block == blocks;
    UnitFault cut(UnitFault::LosePower);
    cut.onBoot(isLast ? lastBlock : fullBlock).from(isLast ? 1 : block).times(1).value(900);
    LoadingOverUnit over({cut});
    over.failAndRepeat(image);
}

HUBN_THREADED_TEST_MAIN(tst_power_cuts)
#include "tst_power_cuts.moc"
