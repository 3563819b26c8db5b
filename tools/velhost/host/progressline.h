#pragma once

#include <QDeadlineTimer>
#include <QString>

#include <mutex>

/// One line of progress on the terminal of standard error, which each text overwrites. Shows
/// nothing where standard error is no terminal. A signal that ends the program removes the text
/// first. There must be only one object at a time. Safe to use from several threads.
class ProgressLine
{
public:
    /// The first text is due after so many milliseconds.
    explicit ProgressLine(int firstMs) : m_due(firstMs) {}
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    /// Whether a text should be shown now.
    bool isDue();

    void show(const QString &text);

    /// Removes the text. Must be called before anything else is printed on the terminal.
    void clear();

private:
    std::mutex m_mutex;
    QDeadlineTimer m_due;
    bool m_isShown = false;
};
