// A SockJS server that does what is published to it, as bus.js does.
package main

import (
	"encoding/json"
	"flag"
	"fmt"
	"net"
	"net/http"
	"os"
	"strings"
	"sync"
	"time"

	"github.com/igm/sockjs-go/v3/sockjs"
)

const shown = 300

var texts []string

func say(line string) {
	if len(line) > shown {
		line = line[:shown]
	}
	fmt.Println(line)
}

func sendNumbers(session sockjs.Session) {
	for from := 0; from < len(texts); {
		for next := from + 1 + from%37; from < next && from < len(texts); from++ {
			if session.Send(texts[from]) != nil {
				return
			}
		}
		time.Sleep(time.Millisecond)
	}
}

func readTexts(file string, count int) {
	content, err := os.ReadFile(file)
	if err == nil {
		err = json.Unmarshal(content, &texts)
	}
	if err != nil {
		panic(err)
	}
	texts = texts[:count]
}

// The TCP connections that clients have open.
var open sync.Map

func changed(conn net.Conn, state http.ConnState) {
	if state == http.StateClosed {
		open.Delete(conn)
	} else {
		open.Store(conn, true)
	}
}

func cut(conn, _ any) bool {
	conn.(net.Conn).Close()
	return true
}

func take(session sockjs.Session, text string) {
	if text[0] >= '0' && text[0] <= '9' {
		session.Send(text)
		return
	}
	say("frame " + text)
	var frame struct{ Body struct{ Type string } }
	json.Unmarshal([]byte(text), &frame)
	switch frame.Body.Type {
	case "numbers":
		go sendNumbers(session)
	case "leave":
		session.Close(3000, "over")
	case "cut":
		open.Range(cut)
	}
}

func main() {
	port := flag.Int("port", 0, "0 takes a free one")
	limit := flag.Uint("response-limit", 131072, "bytes of a streamed answer")
	heartbeat := flag.Int("heartbeat", 25000, "milliseconds")
	count := flag.Int("count", 10000, "how many numbered texts there are")
	file := flag.String("texts", "", "where they are, as JSON")
	flag.Parse()
	readTexts(*file, *count)

	options := sockjs.DefaultOptions
	options.ResponseLimit = uint32(*limit)
	options.HeartbeatDelay = time.Duration(*heartbeat) * time.Millisecond
	handler := sockjs.NewHandler("/eventbus", options, func(session sockjs.Session) {
		id := strings.Split(session.Request().URL.Path, "/")[2]
		names := map[sockjs.ReceiverType]string{
			sockjs.ReceiverTypeWebsocket:    "websocket",
			sockjs.ReceiverTypeXHRStreaming: "xhr-streaming",
			sockjs.ReceiverTypeXHR:          "xhr-polling",
		}
		say("open " + id + " " + names[session.ReceiverType()])
		for {
			text, err := session.Recv()
			if err != nil {
				break
			}
			take(session, text)
		}
		say("close " + id)
	})
	listener, err := net.Listen("tcp", fmt.Sprintf("127.0.0.1:%d", *port))
	if err != nil {
		panic(err)
	}
	fmt.Printf("listening http://%s\n", listener.Addr())
	told := http.HandlerFunc(func(response http.ResponseWriter, request *http.Request) {
		say("request " + request.URL.Path + " " + request.Header.Get("Cookie"))
		handler.ServeHTTP(response, request)
		say("answered " + request.URL.Path)
	})
	panic((&http.Server{Handler: told, ConnState: changed}).Serve(listener))
}
