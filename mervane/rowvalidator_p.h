// mervane/rowvalidator_p.h: what a text row lets the user type, by its input mode.
#pragma once

#include <QValidator>

namespace plx {

enum class InputMode { Text, Upper, Digits, Number, Date };

// "Upper"/"UCase", "Digits", "Number"/"Numeric", "Date", any case; anything else is Text.
InputMode inputModeOf(const QString &mode);

// Refuses keys the mode does not allow and text beyond `maxLength` (0: no limit); upper
// case mode turns what is typed to upper case. Text set by the program is not filtered;
// the row's validation judges it.
class RowValidator : public QValidator
{
public:
    explicit RowValidator(QObject *parent) : QValidator(parent) { }
    void configure(InputMode mode, int maxLength)
    {
        m_mode = mode;
        m_maxLength = maxLength;
    }
    State validate(QString &input, int &pos) const override;

private:
    InputMode m_mode = InputMode::Text;
    int m_maxLength = 0;
};

} // namespace plx
