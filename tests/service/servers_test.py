"""Common web servers serve the content of the embedded service as a plain folder of files with one rewrite rule."""
import os
import shutil
import socket
import subprocess
import sys
import time
import unittest

from service_support import ServiceCase

SERVERS = {}  # name -> path of the executable
INDEX = "Orv_Core_Content_Index.txt"

APACHE = """
ServerRoot {work}
ServerName 127.0.0.1
Listen 127.0.0.1:{port}
PidFile {work}/apache.pid
ErrorLog {work}/apache.log
Mutex file:{work}
LoadModule mpm_event_module /usr/lib/apache2/modules/mod_mpm_event.so
LoadModule authz_core_module /usr/lib/apache2/modules/mod_authz_core.so
LoadModule alias_module /usr/lib/apache2/modules/mod_alias.so
LoadModule rewrite_module /usr/lib/apache2/modules/mod_rewrite.so
User www-data
Group www-data
DocumentRoot {content}
Redirect 302 /redirect http://127.0.0.1:{port}/content?key=1
RewriteEngine on
RewriteCond %{{QUERY_STRING}} (?:^|&)library=([^&]+)
RewriteRule ^/content$ /%1? [L,NE]
"""

LIGHTTPD = """
server.port = {port}
server.bind = "127.0.0.1"
server.document-root = "{content}"
server.modules = ("mod_rewrite", "mod_redirect")
mimetype.assign = ("" => "application/octet-stream")
server.errorlog = "{work}/lighttpd.log"
url.redirect = ("^/redirect$" => "http://127.0.0.1:{port}/content?key=1")
url.redirect-code = 302
url.rewrite-once = ("^/content\\?(?:.*&)?library=([^&]+)" => "/$1")
"""

CADDY = """
{{
    admin off
    auto_https off
}}
http://127.0.0.1:{port} {{
    redir /redirect http://127.0.0.1:{port}/content?key=1 302
    @content path /content
    rewrite @content /{{query.library}}?
    root * {content}
    file_server
}}
"""

NGINX_GZIP = """
daemon off;
pid {work}/nginx.pid;
error_log {work}/nginx.log;
events {{ }}
http {{
    access_log off;
    client_body_temp_path {work}/t; proxy_temp_path {work}/t; fastcgi_temp_path {work}/t; uwsgi_temp_path {work}/t;
    scgi_temp_path {work}/t;
    server {{
        listen 127.0.0.1:{port};
        root {content};
        gzip_static always;
        location = /redirect {{ return 302 http://127.0.0.1:{port}/content?key=1; }}
        location = /content {{ rewrite ^ /$arg_library? last; }}
    }}
}}
"""


class Server:
    """A server in the foreground, running inside a with block."""

    def __init__(self, work, config, *command):
        with socket.socket() as probe:
            probe.bind(("127.0.0.1", 0))
            self.port = probe.getsockname()[1]
        path = os.path.join(work, "config")
        with open(path, "w") as stream:
            stream.write(config.format(port=self.port, work=work, content=os.path.join(work, "files")))
        self.command = [part.replace("CONFIG", path) for part in command]
        self.work = work

    def __enter__(self):
        self.process = subprocess.Popen(self.command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                        env={**os.environ, "HOME": self.work, "XDG_DATA_HOME": self.work,
                                             "XDG_CONFIG_HOME": self.work})
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            try:
                socket.create_connection(("127.0.0.1", self.port), 1).close()
                return self
            except OSError:
                time.sleep(0.05)
        self.__exit__()
        raise TimeoutError(self.command[0] + " does not answer")

    def __exit__(self, *unused):
        self.process.terminate()
        self.process.wait(20)


class Servers(ServiceCase):
    def setUp(self):
        super().setUp()
        self.run_program("sample", self.source)
        files = self.path("files")
        os.mkdir(files)
        content = os.path.join(self.source, "content")
        self.names = ["Doors.orvlib", "Floors.orvlib", "Stairs.orvlib"]
        for name in self.names:
            shutil.copy(os.path.join(content, name), files)
        with open(os.path.join(files, INDEX), "w") as stream:
            stream.write("\n".join(self.names) + "\n")

    def update(self, server, status=0):
        return self.run_program("--root", self.path("root"), "--progress", "none", "update", "--retries", "0", "--url",
                                f"http://127.0.0.1:{server.port}/redirect", status=status)

    def expect_served(self, config, *command):
        with Server(self.work, config, *command) as server:
            self.assertEqual(self.update(server)["updatedCatalogs"], [name[:-7] for name in self.names])
            self.assertEqual(self.update(server)["outcome"], "current")
            shutil.copy(self.path("files", "Floors.orvlib"), self.path("files", "Doors.orvlib"))
            os.utime(self.path("files", "Doors.orvlib"), (time.time() + 5, time.time() + 5))
            if os.path.basename(command[0]) == "lighttpd":
                time.sleep(2.1)  # lighttpd checks a known file only every second second
            self.assertEqual(self.update(server)["updatedCatalogs"], ["Doors"])
            os.remove(self.path("files", "Stairs.orvlib"))
            if os.path.basename(command[0]) == "lighttpd":
                time.sleep(2.1)
            gone = self.update(server, status=1)
            self.assertEqual((gone["outcome"], gone["failed"]), ("incomplete", [
                {"catalog": "Stairs.orvlib", "status": 404, "reason": "HTTP 404"}]))

    @unittest.skipUnless("apache2" in sys.argv[-1], "no Apache here")
    def test_apache(self):
        self.expect_served(APACHE, SERVERS["apache2"], "-X", "-f", "CONFIG")

    @unittest.skipUnless("lighttpd" in sys.argv[-1], "no lighttpd here")
    def test_lighttpd(self):
        self.expect_served(LIGHTTPD, SERVERS["lighttpd"], "-D", "-f", "CONFIG")

    @unittest.skipUnless("caddy" in sys.argv[-1], "no Caddy here")
    def test_caddy(self):
        self.expect_served(CADDY, SERVERS["caddy"], "run", "--adapter", "caddyfile", "--config", "CONFIG")

    @unittest.skipUnless("nginx" in sys.argv[-1], "no nginx here")
    def test_encoded_bodies_are_refused(self):
        """`gzip_static always` sends compressed bytes to all clients, also to those that did not ask for them."""
        files = self.path("files")
        subprocess.run(["gzip", "-k", os.path.join(files, "Doors.orvlib")], check=True)
        with Server(self.work, NGINX_GZIP, SERVERS["nginx"], "-p", self.work, "-c", "CONFIG") as server:
            document = self.update(server, status=1)
        self.assertEqual(document["outcome"], "incomplete")
        self.assertEqual([failure["catalog"] for failure in document["failed"]], ["Doors.orvlib"])
        self.assertIn("Content-Encoding: gzip", document["failed"][0]["reason"])
        self.assertEqual(document["updatedCatalogs"], ["Floors", "Stairs"])


if __name__ == "__main__":
    ServiceCase.program = sys.argv[1]
    SERVERS.update((os.path.basename(path), path) for path in sys.argv[2].split(",") if path)
    unittest.main(argv=sys.argv[:1], verbosity=1)
