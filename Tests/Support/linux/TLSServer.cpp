#include "Tests/Support/TLSServer.h"

#include "Platform/AppKit/linux/GObjectPtr.h"

#include <gio/gio.h>
#include <sys/socket.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace TestSupport {

using Platform::GObjectPtr;

namespace {

constexpr int httpsPort = 443;

struct ContextUnref {
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
};

GObjectPtr<GTlsCertificate> readIdentity(const std::filesystem::path& file) {
    g_autoptr(GError) error = nullptr;
    auto certificate =
        GObjectPtr<GTlsCertificate>::adopt(g_tls_certificate_new_from_file(file.c_str(), &error));
    if (!certificate) {
        throw std::runtime_error(error->message);
    }
    return certificate;
}

/// Closes the connection with a TCP reset. Called when the client's first data arrives.
gboolean reset(GSocket* socket, GIOCondition /*condition*/, gpointer /*data*/) {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(g_socket_get_fd(socket), SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    g_socket_close(socket, nullptr);
    return G_SOURCE_REMOVE;
}

} // namespace

class TLSServer::Implementation {
public:
    Implementation(const std::filesystem::path& identity, int plainPort, Manner manner)
        : identity_(readIdentity(identity))
        , plainPort_(static_cast<guint16>(plainPort))
        , manner_(manner) {
        // The service attaches its event sources to the thread-default context, which `run` iterates on the
        // server's thread.
        g_main_context_push_thread_default(context_.get());
        service_ = GObjectPtr<GSocketService>::adopt(g_socket_service_new());
        g_autoptr(GError) error = nullptr;
        const auto loopback =
            GObjectPtr<GInetAddress>::adopt(g_inet_address_new_loopback(G_SOCKET_FAMILY_IPV4));
        const auto address =
            GObjectPtr<GSocketAddress>::adopt(g_inet_socket_address_new(loopback.get(), httpsPort));
        const bool listens = g_socket_listener_add_address(G_SOCKET_LISTENER(service_.get()), address.get(),
                                                           G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP,
                                                           nullptr, nullptr, &error);
        g_signal_connect(service_.get(), "incoming", G_CALLBACK(incoming), this);
        g_main_context_pop_thread_default(context_.get());
        if (!listens) {
            throw std::runtime_error(error->message);
        }
        thread_ = std::thread([this] { run(); });
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;
    ~Implementation() {
        g_main_context_invoke(
            context_.get(),
            [](gpointer data) -> gboolean {
                static_cast<Implementation*>(data)->stop();
                return G_SOURCE_REMOVE;
            },
            this);
        thread_.join();
    }

private:
    void run() {
        g_main_context_push_thread_default(context_.get());
        while (!stopped_ || connections_ > 0) {
            g_main_context_iteration(context_.get(), TRUE);
        }
        g_main_context_pop_thread_default(context_.get());
    }

    void stop() {
        stopped_ = true;
        g_socket_service_stop(service_.get());
        g_socket_listener_close(G_SOCKET_LISTENER(service_.get()));
        g_cancellable_cancel(cancellable_.get());
    }

    static gboolean incoming(GSocketService* /*service*/, GSocketConnection* connection, GObject* /*source*/,
                             gpointer data) {
        auto& self = *static_cast<Implementation*>(data);
        if (self.manner_ == Manner::resets) {
            self.resetLater(connection);
        } else {
            self.forward(connection);
        }
        return TRUE;
    }

    void resetLater(GSocketConnection* connection) const {
        GSource* source =
            g_socket_create_source(g_socket_connection_get_socket(connection), G_IO_IN, nullptr);
        // Releasing the last reference closes the connection.
        g_source_set_callback(source, G_SOURCE_FUNC(reset), g_object_ref(connection), g_object_unref);
        g_source_attach(source, context_.get());
        g_source_unref(source);
    }

    void forward(GSocketConnection* connection) {
        const auto secure = GObjectPtr<GIOStream>::adopt(
            g_tls_server_connection_new(G_IO_STREAM(connection), identity_.get(), nullptr));
        const auto client = GObjectPtr<GSocketClient>::adopt(g_socket_client_new());
        g_socket_client_set_enable_proxy(client.get(), FALSE);
        const auto plain = GObjectPtr<GSocketConnection>::adopt(
            g_socket_client_connect_to_host(client.get(), "127.0.0.1", plainPort_, nullptr, nullptr));
        if (!secure || !plain) {
            return;
        }
        ++connections_;
        g_io_stream_splice_async(secure.get(), G_IO_STREAM(plain.get()),
                                 static_cast<GIOStreamSpliceFlags>(G_IO_STREAM_SPLICE_CLOSE_STREAM1 |
                                                                   G_IO_STREAM_SPLICE_CLOSE_STREAM2),
                                 G_PRIORITY_DEFAULT, cancellable_.get(), ended, this);
    }

    static void ended(GObject* /*stream*/, GAsyncResult* result, gpointer data) {
        // Ignore errors, because the client may close the connection or reject the certificate.
        g_io_stream_splice_finish(result, nullptr);
        --static_cast<Implementation*>(data)->connections_;
    }

    std::unique_ptr<GMainContext, ContextUnref> context_{g_main_context_new()};
    GObjectPtr<GTlsCertificate> identity_;
    guint16 plainPort_;
    Manner manner_;
    GObjectPtr<GCancellable> cancellable_ = GObjectPtr<GCancellable>::adopt(g_cancellable_new());
    GObjectPtr<GSocketService> service_;
    int connections_ = 0; // used only on the server's thread, like `stopped_`
    bool stopped_ = false;
    std::thread thread_;
};

TLSServer::TLSServer(const std::filesystem::path& identity, int plainPort, Manner manner)
    : implementation_(std::make_unique<Implementation>(identity, plainPort, manner)) {}

TLSServer::~TLSServer() = default;

} // namespace TestSupport
