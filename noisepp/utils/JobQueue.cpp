#include "noisepp/utils/JobQueue.h"

#include <vector>

#include "noisepp/core/Exception.h"

namespace noisepp::utils {

void JobQueue::addJob(PipelineJob* job) {
    NOISEPP_REQUIRE(job != nullptr, "job");
    mJobs.push_back(job);
}

void JobQueue::executeJobs() {
    std::vector<Cache> cache(mCacheSize);
    while (!mJobs.empty()) {
        PipelineJob* job = mJobs.front();
        mJobs.pop_front();
        job->execute(cache.empty() ? nullptr : cache.data());
        job->finish();
        delete job;
    }
}

JobQueue::~JobQueue() {
    for (PipelineJob* job : mJobs)
        delete job;
}

}  // namespace noisepp::utils
