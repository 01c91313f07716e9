#pragma once
// The scene most dialog tests start from: a reset engine holding the sample job, an empty result
// cache, a fresh working directory, and a host widget as the dialogs' parent handle. Closing it
// waits for every worker a stopped run left behind.

#include <QWidget>
#include <memory>

#include "TemporaryWorkingDirectory.h"

namespace wctest {

class SampleJobScene {
public:
    static constexpr const char* kJob = "sample_job";

    // For init(): false when the sample job could not be opened.
    bool open();
    // For cleanup(): false when a left worker did not end within 10 s.
    bool close();

    QWidget* host() const { return host_.get(); }
    const TemporaryWorkingDirectory& working() const { return *working_; }

private:
    std::unique_ptr<TemporaryWorkingDirectory> working_;
    std::unique_ptr<QWidget> host_;
};

}  // namespace wctest
