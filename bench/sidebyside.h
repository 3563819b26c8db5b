#pragma once

#include <functional>
#include <string>
#include <vector>

/// One of the ways to do the same work.
struct Variant
{
    std::string name;
    std::function<void()> run;
    /// Done after each run, and not timed.
    std::function<void()> cleanUp = [] {};
};

/// Times of runs in microseconds, in the order of the rounds.
using Times = std::vector<double>;

/// How often each variant takes its turn.
constexpr int rounds = 16;

/// Keeps this program, and those that it starts from now on, on the processor where it runs, so
/// that only what is added to an exchange makes a difference. Where that is refused it says so.
void stayOnOneProcessor();

/// Runs each variant once unmeasured; then all of them in turns, each round beginning with another
/// one. Returns the times of each variant, for one of `parts` parts of its work.
std::vector<Times> inTurns(const std::vector<Variant> &variants, int parts);

/// Round by round, how many times longer one takes than the other.
Times ratios(const Times &longer, const Times &shorter);

/// Prints the names of the columns of what printFigure() prints.
void printHeader();

/// Prints a line of comma-separated values: the name, the size that it was measured at, median,
/// least and greatest value.
void printFigure(const std::string &name, int size, Times values);
