// The face swap service over real HTTP on the loopback, with real photographs.

#include "FaceSwap.h"
#include "FaceSwapTestSupport.h"
#include "SwapServer.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <atomic>
#include <fstream>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <thread>

using namespace lumivex::faceswap;
using namespace std::chrono_literals;

namespace {

// Deadlines on real swaps stretch with the build's speed (sanitizer builds are several times slower).
constexpr int slowdown = LUMIVEX_TEST_SLOWDOWN;

std::string readFile(const std::string& name) {
    std::ifstream in(std::string(LUMIVEX_SAMPLES_DIR) + "/" + name, std::ios::binary);
    std::stringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

httplib::MultipartFormDataItems swapForm(const std::string& source, const std::string& target,
                                         const std::string& faceIndex = "0") {
    return {{"source", source, "source.jpg", "image/jpeg"},
            {"target", target, "target.jpg", "image/jpeg"},
            {"face_index", faceIndex, "", ""}};
}

std::string taskIdOf(const std::string& json) {
    const std::string key = "\"task_id\": \"";
    const auto at = json.find(key);
    if (at == std::string::npos)
        return {};
    const auto start = at + key.size();
    return json.substr(start, json.find('"', start) - start);
}

class FaceSwapService : public faceswaptest::ServiceFixture {
protected:
    httplib::Client client() {
        httplib::Client cli("127.0.0.1", server->port());
        cli.set_read_timeout(20, 0);
        return cli;
    }

    // Polls the way the app does (404 means "not yet"), but bounded so a lost task fails the test.
    httplib::Result waitForResult(const std::string& id, std::chrono::seconds limit = 20s * slowdown) {
        httplib::Client cli = client();
        const auto deadline = std::chrono::steady_clock::now() + limit;
        for (;;) {
            httplib::Result res = cli.Get("/result/" + id);
            if (!res || res->status != 404 || std::chrono::steady_clock::now() > deadline)
                return res;
            std::this_thread::sleep_for(20ms);
        }
    }

    std::string submit(const httplib::MultipartFormDataItems& form) {
        httplib::Result res = client().Post("/swap", form);
        if (!res || res->status != 200)
            return {};
        EXPECT_EQ(res->get_header_value("Content-Type"), "application/json");
        return taskIdOf(res->body);
    }
};

double meanAbsDiff(const cv::Mat& a, const cv::Mat& b, const cv::Mat& mask) {
    cv::Mat diff;
    cv::absdiff(a, b, diff);
    cv::cvtColor(diff, diff, cv::COLOR_BGR2GRAY);
    return cv::mean(diff, mask)[0];
}

} // namespace

TEST_F(FaceSwapService, SwapReplacesTheTargetFaceAndLeavesTheRestAlone) {
    startServer();
    const std::string source = readFile("messi5.jpg");
    const std::string target = readFile("basketball1.png");
    const auto started = std::chrono::steady_clock::now();
    const std::string id = submit(swapForm(source, target));
    ASSERT_EQ(id.size(), 32u);

    httplib::Result res = waitForResult(id);
    ASSERT_TRUE(res);
    ASSERT_EQ(res->status, 200) << res->body;
    // A PNG target comes back as PNG, so nothing away from the face is recompressed.
    EXPECT_EQ(res->get_header_value("Content-Type"), "image/png");
    EXPECT_LT(std::chrono::steady_clock::now() - started, 10s * slowdown);

    const cv::Mat before =
        cv::imdecode(cv::Mat(1, int(target.size()), CV_8U, (void*)target.data()), cv::IMREAD_COLOR);
    const cv::Mat after =
        cv::imdecode(cv::Mat(1, int(res->body.size()), CV_8U, (void*)res->body.data()), cv::IMREAD_COLOR);
    ASSERT_EQ(after.size(), before.size());

    // The face that was replaced is the largest one an independent detector finds in the target.
    const FaceDetector detector(kDefaultLandmarkModel);
    ASSERT_TRUE(detector.isReady());
    const std::vector<Face> faces = detector.detect(before);
    ASSERT_FALSE(faces.empty());
    const cv::Rect face = faces.front().box;

    cv::Mat core(before.size(), CV_8U, cv::Scalar(0));
    cv::rectangle(
        core, cv::Rect(face.x + face.width / 4, face.y + face.height / 3, face.width / 2, face.height / 2),
        cv::Scalar(255), cv::FILLED);
    // Everything well clear of the face: the blend may reach a little beyond the box, never far.
    cv::Mat surroundings(before.size(), CV_8U, cv::Scalar(255));
    const cv::Rect grown(face.x - face.width / 2, face.y - face.height / 2, face.width * 2, face.height * 2);
    cv::rectangle(surroundings, grown, cv::Scalar(0), cv::FILLED);

    EXPECT_GT(meanAbsDiff(before, after, core), 6.0);
    // Untouched outside: the PNG answer is lossless.
    EXPECT_EQ(meanAbsDiff(before, after, surroundings), 0.0);
}

TEST_F(FaceSwapService, SwapsThatCannotBeDoneFailWithTheirReason) {
    startServer();
    const std::string face = readFile("messi5.jpg");
    const std::string noFace = readFile("fruits.jpg");
    // A JPEG signature on bytes that do not decode: accepted at the door, refused by the decoder.
    const std::string broken = face.substr(0, 600);

    const struct {
        httplib::MultipartFormDataItems form;
        std::string reason;
    } cases[] = {
        {swapForm(noFace, face), "No face found in the source photo"},
        {swapForm(face, noFace), "No face found in the target photo"},
        {swapForm(face, broken), "The target photo could not be read"},
        {swapForm(face, face, "9"), "face_index 9 is out of range"},
    };
    for (const auto& c : cases) {
        const std::string id = submit(c.form);
        ASSERT_FALSE(id.empty()) << c.reason;
        httplib::Result res = waitForResult(id);
        ASSERT_TRUE(res);
        EXPECT_EQ(res->status, 422);
        EXPECT_TRUE(res->body.ends_with(c.reason)) << res->body;
        EXPECT_EQ(res->get_header_value("Content-Type"), "text/plain; charset=utf-8");
    }
}

TEST_F(FaceSwapService, MalformedRequestsAreRefusedWithAReason) {
    ServerOptions options;
    options.maxUploadBytes = 1 << 20;
    startServer(options);
    httplib::Client cli = client();
    const std::string photo = readFile("messi5.jpg");

    const struct {
        httplib::MultipartFormDataItems form;
        std::string reason;
    } cases[] = {
        {{}, "The request could not be read as a multipart form"},
        {{{"source", photo, "source.jpg", "image/jpeg"}, {"face_index", "0", "", ""}},
         "The form has no part named target"},
        {swapForm("plain words, not a picture", photo),
         "The part source is not a JPEG, PNG, WebP, BMP or TIFF photo"},
        {swapForm(photo, ""), "The part target is not a JPEG, PNG, WebP, BMP or TIFF photo"},
        {swapForm(photo, photo, "-1"), "face_index must be a whole number from 0 (0 is the largest face)"},
        {swapForm(photo, photo, "0x"), "face_index must be a whole number from 0 (0 is the largest face)"},
    };
    for (const auto& c : cases) {
        httplib::Result res = cli.Post("/swap", c.form);
        ASSERT_TRUE(res) << c.reason;
        EXPECT_EQ(res->status, 400) << c.reason;
        EXPECT_EQ(res->body, c.reason);
    }

    httplib::Result json = cli.Post("/swap", "{\"source\": 1}", "application/json");
    ASSERT_TRUE(json);
    EXPECT_EQ(json->status, 400);
    EXPECT_EQ(json->body, "Send a multipart form with the parts source, target and face_index");

    httplib::Result large = cli.Post("/swap", swapForm(photo, std::string(2 << 20, 'x')));
    ASSERT_TRUE(large);
    EXPECT_EQ(large->status, 413);
    EXPECT_EQ(large->body, "The upload is larger than 1 MB");

    // Never 404 for an id the service does not know: the app would poll it forever.
    for (const std::string path :
         {"/result/0123456789abcdef0123456789abcdef", "/result/", "/result/a%20b%3F"}) {
        httplib::Result res = cli.Get(path);
        ASSERT_TRUE(res);
        EXPECT_EQ(res->status, 410) << path;
        EXPECT_EQ(res->body, "Unknown task, or its result has expired");
    }
}

TEST_F(FaceSwapService, ConcurrentSubmissionsAllFinishAndTheServiceStaysUp) {
    startServer();
    const std::string face = readFile("messi5.jpg");
    const std::string noFace = readFile("fruits.jpg");
    constexpr int count = 20;

    std::vector<std::string> ids(count);
    std::vector<int> statuses(count, 0);
    std::vector<std::string> bodies(count);
    std::vector<std::thread> clients;
    const auto started = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i)
        clients.emplace_back([&, i] {
            // Every fourth asks for the impossible, so failures and successes interleave on the workers.
            ids[i] = submit(swapForm(i % 4 == 3 ? noFace : face, face));
            if (ids[i].empty())
                return;
            if (httplib::Result res = waitForResult(ids[i])) {
                statuses[i] = res->status;
                bodies[i] = res->body;
            }
        });
    for (std::thread& t : clients)
        t.join();
    EXPECT_LT(std::chrono::steady_clock::now() - started, 25s * slowdown);

    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), std::size_t(count));
    for (int i = 0; i < count; ++i) {
        ASSERT_FALSE(ids[i].empty()) << i;
        if (i % 4 == 3) {
            EXPECT_EQ(statuses[i], 422) << i;
            EXPECT_EQ(bodies[i], "No face found in the source photo");
        } else {
            EXPECT_EQ(statuses[i], 200) << i;
            EXPECT_TRUE(bodies[i].starts_with("\xFF\xD8\xFF")) << i;
        }
    }

    // Still serving, and every request left exactly one log line.
    httplib::Result again = client().Get("/result/" + ids[0]);
    ASSERT_TRUE(again);
    EXPECT_EQ(again->status, 200);
    std::lock_guard lock(logMutex);
    const auto submits = std::count_if(logLines.begin(), logLines.end(), [](const std::string& l) {
        return l.starts_with("POST /swap 200 47B ");
    });
    EXPECT_EQ(submits, count);
}

TEST_F(FaceSwapService, AFullQueueAnswersBusyAndKeepsWhatItAccepted) {
    ServerOptions options;
    options.workers = 1;
    options.queueCapacity = 1;
    startServer(options);
    const std::string face = readFile("messi5.jpg");

    std::vector<std::string> accepted;
    int busy = 0;
    for (int i = 0; i < 6; ++i) {
        httplib::Result res = client().Post("/swap", swapForm(face, face));
        ASSERT_TRUE(res);
        if (res->status == 503) {
            ++busy;
            EXPECT_EQ(res->body, "The service is busy; try again in a moment");
            EXPECT_EQ(res->get_header_value("Retry-After"), "5");
        } else {
            ASSERT_EQ(res->status, 200);
            accepted.push_back(taskIdOf(res->body));
        }
    }
    // One swap running and one waiting at most, so six quick submissions cannot all get in.
    EXPECT_GE(busy, 1);
    EXPECT_GE(accepted.size(), 1u);
    for (const std::string& id : accepted) {
        httplib::Result res = waitForResult(id);
        ASSERT_TRUE(res);
        EXPECT_EQ(res->status, 200);
    }
}

TEST_F(FaceSwapService, FinishedResultsExpire) {
    ServerOptions options;
    options.resultLifetime = 300ms;
    startServer(options);
    const std::string face = readFile("messi5.jpg");
    const std::string id = submit(swapForm(face, face));
    httplib::Result done = waitForResult(id);
    ASSERT_TRUE(done);
    ASSERT_EQ(done->status, 200);
    // Fetching twice is allowed while the result lives.
    EXPECT_EQ(client().Get("/result/" + id)->status, 200);
    std::this_thread::sleep_for(400ms);
    httplib::Result gone = client().Get("/result/" + id);
    ASSERT_TRUE(gone);
    EXPECT_EQ(gone->status, 410);
}
