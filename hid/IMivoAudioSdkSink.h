// The sink of an audio SDK. The host and the stack implement it as doing nothing. Nothing in this
// program calls it.
#pragma once

class IMivoAudioSdkSink {
public:
    virtual void OnAudioSdkEvent() = 0;

protected:
    ~IMivoAudioSdkSink() = default;
};
