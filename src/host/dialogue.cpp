#include "host/dialogue.h"

#include "host/console.h"
#include "host/ends.h"

#include <optional>
#include <utility>

namespace gridforge::inline host {

std::string ask(std::string_view question)
{
    std::optional<std::string> answer = readAnswer(question);
    if (!answer) {
        EXITS();
    }
    return *std::move(answer);
}

void pauseForRetry(std::string_view prompt)
{
    if (!readAnswer(prompt)) {
        EXITS();
    }
}

} // namespace gridforge::inline host
