// Logs on standard output, one after the other, in one form.
//
// Thread-safety: one thread at a time.
#pragma once

#include <memory>
#include <string>

#include "tools/forms/Form.h"

class ShownLogs {
 public:
    /// For this many logs. Several of them come each with its name. Throws Failure for several logs in a form
    /// that takes one.
    ShownLogs(const Form& form, std::size_t logs);

    /// Writes a part of the log.
    void add(const std::string& path, const kesta& log, const Selection& selection);

    /// To be called after the last one: throws Failure unless all has been written.
    void finish();

 private:
    void line(const char* text);

    const Form& m_form;
    const bool m_several;
    std::size_t m_count = 0;
    std::unique_ptr<LineSink> m_output;
};
