// Linked in place of `fsync` where nothing loses power: thousands of next starts would each wait for the disk.

extern "C" int __wrap_fsync(int descriptor);

extern "C" int __wrap_fsync(int /*descriptor*/) {
    return 0;
}
