// Threads that load, save, draw, plot, write texts, fail and archive at once, and threads that come and go:
// every one finds its own results and its own errors. Run under the thread sanitizer: mix_threads OPERATIONS
// SHORT_THREADS

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "kalvo/kalvo.h"
#include "fuzz/require.h"

namespace {

using Zelkor::Kalvo::Fuzzing::Require;

constexpr int kThreads = 8;

// What one thread works on.
class Worker {
public:
    explicit Worker(const std::string& folder, int number)
        : m_path(folder + "/" + std::to_string(number)), m_random(static_cast<unsigned>(number)) {
        KxSetTraceMode(KX_TRACE_MODE_SILENT);
        KxSetJpegQuality(static_cast<unsigned>(50 + number));
        for (int i = 0; i < 64 * 48; ++i) m_image.SetPixel(i * (number + 3) & 255, i % 64, i / 64);
        m_context = CreateCompatibleDC(nullptr);
        m_bitmap = CreateBitmap(80, 60, 1, 32, nullptr);
        m_previous = SelectObject(m_context, m_bitmap);
    }
    ~Worker() {
        SelectObject(m_context, m_previous);
        DeleteObject(m_bitmap);
        DeleteDC(m_context);
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void Work() {
        static constexpr void (Worker::*kOperations[])() = {
            &Worker::Bmp,  &Worker::Tiff, &Worker::Jpeg, &Worker::Archive, &Worker::Draw,
            &Worker::Plot, &Worker::Text, &Worker::Fail, &Worker::Fields,  &Worker::Masks};
        (this->*kOperations[m_random() % std::size(kOperations)])();
    }

private:
    void SaveAndLoad(const std::string& extension, bool isExact) {
        const std::string name = m_path + extension;
        m_image.Save(name.c_str());
        KxImage<KxBW8> loaded;
        loaded.Load(name.c_str());
        Require(KxSuccess(), "a file is saved and loaded");
        const int saved = m_image.GetPixel(17, 9), found = loaded.GetPixel(17, 9);
        Require(!isExact || found == saved, "it holds what was saved");
    }
    void Bmp() { SaveAndLoad(".bmp", true); }
    void Tiff() { SaveAndLoad(".tif", true); }
    void Jpeg() { SaveAndLoad(".jpg", false); }

    void Archive() {
        KxROI<KxBW8> region(&m_image, 3, 4, 20, 20);
        region.SetTitle("region");
        KxMemSerializer writer, reader;
        writer.OpenWriter();
        m_image.Save(&writer);
        reader.OpenReader(writer.GetBuffer());
        KxImage<KxBW8> loaded;
        loaded.Load(&reader);
        Require(loaded.GetFirstSubROI() && loaded.GetFirstSubROI()->GetOrgY() == 4,
                "an archive holds the tree");
    }

    void Draw() {
        m_image.Draw(m_context, 1, 1);
        const int value = m_image.GetPixel(5, 5);
        Require(GetPixel(m_context, 5, 5) == RGB(value, value, value), "it is drawn");
    }

    void Plot() {
        KxBW8Vector profile;
        for (int i = 0; i < 50; ++i) profile.AddElement(i * 5);
        profile.Draw(m_context, 80, 60, 0, 0);
        Require(KxSuccess(), "a plot is drawn");
    }

    void Text() {
        const HFONT font =
            CreateFontA(-8 - static_cast<int>(m_random() % 12), 0, 0, 0, m_random() % 2 ? 400 : 700, 0, 0, 0,
                        0, 0, 0, 0, 0, m_random() % 2 ? "DejaVu Sans" : "DejaVu Sans Mono");
        const HGDIOBJ previous = SelectObject(m_context, font);
        Require(TextOutA(m_context, 1, 1, "text", 4), "a text is written");
        DeleteObject(SelectObject(m_context, previous));
    }

    void Fail() {
        KxSetError(KX_ERROR_FILE_OPEN);
        std::this_thread::yield();
        Require(KxGetError() == KX_ERROR_FILE_OPEN, "errors are of their thread");
        m_image.Load((m_path + ".none").c_str());
        Require(KxGetError() == KX_ERROR_FILE_OPEN && m_image.GetWidth() == 64, "a failure changes nothing");
        KxOk();
    }

    void Fields() {
        KxImage<KxC24> colors(32, 16), decoded;
        unsigned char* jpeg = nullptr;
        unsigned size = 0;
        KxJpegHandler::CreateJpegFromRGB24(jpeg, size,
                                           static_cast<unsigned char*>(colors.GetGenericImagePtr(0, 0)),
                                           static_cast<unsigned>(colors.GetRowPitch()), 32, 16, 0);
        KxJpegHandler handler;
        handler.SetBuffers(jpeg, size, jpeg, size);
        handler.DecompressToImage(decoded, KxJpegHandler::FullSize);
        Require(decoded.GetHeight() == 32, "fields are decoded");
        Kalvo_Free(jpeg);
    }

    void Masks() {
        KxROI<KxBW8> region(&m_image, 3, 4, 20, 20);
        region.SetEllipseMask(0, 0, 0, 0);
        region.DrawMask(m_context, 1, 1, 0, 0);
        region.DrawFrame(m_context, KX_FRAME_POSITION_INSIDE, 1, 1, 1, 0, 0);
        Require(region.GetMaskRuns().GetNumElements() == 20, "a mask is made");
    }

    const std::string m_path;
    std::minstd_rand m_random;
    KxImage<KxBW8> m_image{64, 48};
    HDC m_context;
    HBITMAP m_bitmap;
    HGDIOBJ m_previous;
};

}  // namespace

int main(int argc, char** argv) {
    const int operations = argc > 1 ? std::atoi(argv[1]) : 300,
              shortThreads = argc > 2 ? std::atoi(argv[2]) : 300;
    std::string folder = (std::filesystem::temp_directory_path() / "mix-XXXXXX").string();
    Require(mkdtemp(folder.data()), "there is a folder");
    std::atomic<int> workersLeft = kThreads;
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number)
        threads.emplace_back([&, number] {
            {
                Worker worker(folder, number);
                for (int i = 0; i < operations; ++i) worker.Work();
            }
            --workersLeft;
        });
    for (int i = 0; i < shortThreads; ++i)
        std::thread([i] {
            Require(KxGetError() == KX_OK, "a thread begins without an error");
            KxSetError(i % 2 ? KX_ERROR_FILE_OPEN : KX_ERROR_FILE_READ);
            Require(KxGetError() == (i % 2 ? KX_ERROR_FILE_OPEN : KX_ERROR_FILE_READ),
                    "errors are of their thread");
        }).join();
    for (std::thread& thread : threads) thread.join();
    std::filesystem::remove_all(folder);
    return workersLeft;
}
