// The lock that HDF5 and this program hold on a file while they have it open.
#pragma once

#include <string>

namespace vak::store {

enum class Use { reading, writing };

// Whether another program has the file open in a way that forbids this use. False for what is no file.
bool is_in_use(const std::string& file, Use);

// Keeps writers away while it lives; readers may come.
class ReadLock {
public:
    explicit ReadLock(const std::string& file);
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;
    ~ReadLock();

    bool held() const { return held_; }

private:
    int descriptor_;
    bool held_;
};

}  // namespace vak::store
