#include "SampleJobScene.h"

#include "ReferenceEngine.h"
#include "common_cache.h"
#include "frame/BackgroundRun.h"

namespace wctest {

bool SampleJobScene::open() {
    wcref::resetEngine();
    Korvo::Cache::common_cache::instance()->clear();
    working_ = std::make_unique<TemporaryWorkingDirectory>();
    host_ = std::make_unique<QWidget>();
    return wcref::openSampleJob(kJob);
}

bool SampleJobScene::close() {
    host_.reset();
    working_.reset();
    return wc::BackgroundRun::waitForDetachedWorkers(10000);
}

}  // namespace wctest
