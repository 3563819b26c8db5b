#include "controller/replay.h"

#include "controller/linebuffer.h"

Reply replayed(const Line &line, Replay *replay)
{
    const auto found = line.tooLong ? replay->answers.end() : replay->answers.find(line.text);
    if (found == replay->answers.end()) {
        ++replay->unknown;
        const QByteArray refusal("E1\r\n");
        return {{{Action::Kind::Send, 0, refusal}}, false, refusal, "not in the trace"};
    }
    const QList<Action> actions = found->recorded.at(found->next);
    found->next = (found->next + 1) % found->recorded.size();
    return {actions, false, {}, {}};
}
