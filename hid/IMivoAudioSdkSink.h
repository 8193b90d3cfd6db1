// The sink of an audio SDK. Host and stack offer it and do nothing in it: nothing calls it here.
#pragma once

class IMivoAudioSdkSink {
public:
    virtual void OnAudioSdkEvent() = 0;

protected:
    ~IMivoAudioSdkSink() = default;
};
