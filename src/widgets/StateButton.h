#pragma once

#include <QPointer>
#include <QPushButton>

#include <functional>

/// A push button that stands for something being on or off and tells that by its look alone, without being checkable.
///
/// To a screen reader it is a check box, whose description is asked for when the reader wants it: a panel of many such
/// buttons that changes with every script pays nothing for words that nobody hears. GUI thread only.
class StateButton : public QPushButton
{
    Q_OBJECT

public:
    using Meaning = std::function<QString()>;

    explicit StateButton(const QString& text, QWidget* parent = nullptr);

    void setOn(bool on);
    bool isOn() const
    {
        return switchedOn;
    }

    /// Where the words for the state come from, for as long as the context lives.
    void setMeaning(const QObject* context, Meaning words);
    QString meaning() const; ///< empty where there are none
    void meaningChanged();   ///< for readers that listen

private:
    bool switchedOn = false;
    QPointer<const QObject> meaningContext;
    Meaning wordsOfMeaning;
};
