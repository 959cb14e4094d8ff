// The library as a plug-in brings it: loaded and unloaded again and again, while threads come and go.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>

namespace {

class Plugin {
public:
    Plugin() : m_handle(dlopen(KALVO_PLUGIN, RTLD_NOW)) {}
    ~Plugin() { Unload(); }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    std::string Use(bool isFirstThread) {
        const auto use = m_handle ? dlsym(m_handle, "UseLibrary") : nullptr;
        return use ? reinterpret_cast<const char* (*)(int)>(use)(isFirstThread) : dlerror();
    }
    void Unload() {
        if (m_handle) dlclose(m_handle);
        m_handle = nullptr;
    }

private:
    void* m_handle;
};

bool IsLoaded(const char* name) {
    void* const handle = dlopen(name, RTLD_NOW | RTLD_NOLOAD);
    if (handle) dlclose(handle);
    return handle != nullptr;
}

TEST(Library, StartsFreshEachTimeItIsLoaded) {
    for (int round = 0; round < 100; ++round) {
        Plugin plugin;
        ASSERT_EQ(plugin.Use(true), "") << round;
        std::latch used(1), unloaded(1);
        std::thread outlives([&] {
            EXPECT_EQ(plugin.Use(false), "") << round;
            used.count_down();
            unloaded.wait();
        });
        std::thread([&] { EXPECT_EQ(plugin.Use(false), "") << round; }).join();
        used.wait();
        if (round % 2)
            plugin.Unload();
        else
            std::thread([&] { plugin.Unload(); }).join();
        EXPECT_FALSE(IsLoaded(KALVO_LIBRARY)) << round;
        unloaded.count_down();
        outlives.join();
    }
}

}  // namespace
